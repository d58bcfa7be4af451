#pragma once

#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace support {

/// What a connection to a scripted server gets for its request, byte by byte.
struct Answer {
    enum class Then { Close, Reset, Hold };

    std::string head;
    std::string body = {};
    Then then = Then::Close;
    std::string rest = {}; ///< behind a hold
    std::size_t times = 1; ///< how often the body is sent
};

/// As servers answer. `headers`: what else there is to say, lines that end with CR LF.
inline Answer answer(const std::string& status, const std::string& body = {}, const std::string& headers = {})
{
    return {"HTTP/1.1 " + status + "\r\nConnection: close\r\n" + headers + "\r\n", body};
}

/// An HTTP server on the loopback that does what no real one can be made to do: the nth connection gets the nth answer,
/// those behind the last one the last. One that is held gets its rest when the next one has been served, or at the end.
class ScriptedServer {
public:
    explicit ScriptedServer(std::vector<Answer> answers);
    ~ScriptedServer();
    ScriptedServer(const ScriptedServer&) = delete;
    ScriptedServer& operator=(const ScriptedServer&) = delete;

    std::wstring url() const { return L"http://127.0.0.1:" + std::to_wstring(m_port) + L"/file"; }
    /// The head of each request so far.
    std::vector<std::string> requests() const;

private:
    void serve();
    /// Nothing: it is over.
    const Answer* answerTo(const std::string& request);

    const std::vector<Answer> m_answers;
    std::size_t m_listener;
    unsigned short m_port;
    mutable std::mutex m_mutex;
    std::vector<std::string> m_requests;
    bool m_stopping = false;
    std::thread m_thread;
};

} // namespace support
