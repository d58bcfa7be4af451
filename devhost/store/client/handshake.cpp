#include "store/client/handshake.h"

#include <nlohmann/json.hpp>

namespace devhost::store {

std::unique_ptr<Pipe> openChannel(const std::wstring& instance, Role role, nlohmann::json hello, void* stopEvent)
{
    hello["role"] = role == Role::Tool ? "tool" : "application";
    auto pipe = Pipe::connect(instance, stopEvent);
    if (!pipe || !pipe->send(hello.dump()) || !pipe->receive())
        return nullptr;
    return pipe;
}

} // namespace devhost::store
