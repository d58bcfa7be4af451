#pragma once

#include <cstddef>
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
    std::string rest = {}; ///< what a held connection gets at its release, before it is closed
    std::size_t times = 1; ///< how often the body is sent
};

/// An answer as servers give it; "Content-Length" and what else is wanted stands in `headers`, lines that end with CR
/// LF.
inline Answer answer(const std::string& status, const std::string& body = {}, const std::string& headers = {})
{
    return {"HTTP/1.1 " + status + "\r\nConnection: close\r\n" + headers + "\r\n", body};
}

/// An HTTP server on the loopback that does what no real one can be made to do: the nth connection gets the nth answer,
/// those behind the last one the last. Serves one connection after the other, and the next while it holds some.
class ScriptedServer {
public:
    explicit ScriptedServer(std::vector<Answer> answers);
    ~ScriptedServer();
    ScriptedServer(const ScriptedServer&) = delete;
    ScriptedServer& operator=(const ScriptedServer&) = delete;

    std::wstring url(const std::wstring& path = L"file") const;
    /// The head of each request so far.
    std::vector<std::string> requests() const;
    void release();

private:
    void serve();
    bool take(std::size_t client);
    void play(std::size_t client, const Answer& answer);

    const std::vector<Answer> m_answers;
    std::size_t m_listener = 0;
    unsigned short m_port = 0;
    mutable std::mutex m_mutex;
    std::vector<std::string> m_requests;
    std::vector<std::pair<std::size_t, std::string>> m_held; ///< with what is left to send
    bool m_stopping = false;
    std::thread m_thread;
};

} // namespace support
