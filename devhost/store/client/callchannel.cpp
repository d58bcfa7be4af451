#include "store/client/callchannel.h"

#include "ipc/instance.h"
#include "store/protocol/errorcode.h"
#include "vxtl/parsejson.h"

#include <nlohmann/json.hpp>

namespace devhost::store {

namespace {

std::string toFrame(const nlohmann::json& request, const std::string& subject)
{
    std::string frame;
    try {
        frame = request.dump();
    } catch (const nlohmann::json::exception&) {
        throw StoreException(ErrorCode::InvalidParameter, subject, "text is not UTF-8");
    }
    if (frame.size() > ipc::longestFrame)
        throw StoreException(ErrorCode::SizeLimit, subject);
    return frame;
}

} // namespace

nlohmann::json CallChannel::call(const nlohmann::json& request, const std::string& subject)
{
    const std::string frame = toFrame(request, subject);
    std::optional<std::string> answer;
    {
        const std::lock_guard lock(m_mutex);
        const bool reused = m_pipe != nullptr;
        answer = exchange(frame);
        // The old connection may have died with a server that another one has followed.
        if (!answer && reused)
            answer = exchange(frame);
    }
    if (!answer)
        throw StoreException(ErrorCode::Unreachable, subject);
    nlohmann::json reply = vx::parseJson(*answer);
    if (const auto code = static_cast<ErrorCode>(reply.at("code").get<int>()); code != ErrorCode::Success)
        throw StoreException(code, subject, reply.value("text", std::string()));
    return reply;
}

std::unique_ptr<ipc::Pipe> CallChannel::connect(nlohmann::json hello, ipc::Limits limits) const
{
    hello["role"] = m_role == Role::Tool ? "tool" : "application";
    auto pipe = ipc::Pipe::connect(ipc::pipeName(m_instance, L"store"), limits);
    if (!pipe || !pipe->send(hello.dump()) || !pipe->receive())
        return nullptr;
    return pipe;
}

std::optional<std::string> CallChannel::exchange(const std::string& frame)
{
    if (!m_pipe)
        m_pipe = connect({{"channel", "calls"}});
    if (!m_pipe)
        return std::nullopt;
    std::optional<std::string> answer;
    if (m_pipe->send(frame))
        answer = m_pipe->receive();
    if (!answer)
        m_pipe.reset();
    return answer;
}

} // namespace devhost::store
