#pragma once

#include <string>
#include <string_view>

namespace devhost::host {

/// One end of a message pipe between two host programs, with a limit on the time that each step may take.
/// Every operation throws CommandError. One thread at a time.
class ControlPipe {
public:
    static std::wstring nameOf(std::wstring_view instance);

    /// Takes the native pipe handle, opened for overlapped use.
    explicit ControlPipe(void* handle);
    ~ControlPipe();
    ControlPipe(const ControlPipe&) = delete;
    ControlPipe& operator=(const ControlPipe&) = delete;

    void* handle() const { return m_handle; }
    /// Serving end: true when a client has connected, false when `stopEvent` was set first.
    bool accept(void* stopEvent);
    void disconnect();
    void write(std::string_view message, unsigned long timeoutMs);
    std::string read(unsigned long timeoutMs);

private:
    unsigned long finish(bool started, unsigned long timeoutMs, void* overlapped);

    void* m_handle;
    void* m_event;
};

} // namespace devhost::host
