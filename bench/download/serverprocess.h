#pragma once

#include <string>

/// A server on the loopback in a process of its own, whose body is so many MiB long. Ends with the object.
class ServerProcess {
public:
    /// Throws std::runtime_error.
    explicit ServerProcess(unsigned mebibytes);
    ~ServerProcess();
    ServerProcess(const ServerProcess&) = delete;
    ServerProcess& operator=(const ServerProcess&) = delete;

    const std::wstring& url() const { return m_url; }

    /// For main: what such a process does, until it is ended. Nothing when this is none.
    static void serveIfAsked(int argc, char** argv);

private:
    void* m_process = nullptr;
    std::wstring m_url;
};
