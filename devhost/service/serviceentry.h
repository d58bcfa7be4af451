#pragma once

#include <string>

namespace devhost::service {

/// A service's entry in the system's list, whether there is one or not; looked up anew for each call. Operations throw
/// Win32Exception. Any thread.
class ServiceEntry {
public:
    /// The numbers are the system's.
    struct Configuration {
        std::wstring commandLine;
        unsigned long type;
        unsigned long startType;
    };

    explicit ServiceEntry(std::wstring name) : m_name(std::move(name)) {}

    bool exists() const;
    std::wstring commandLine() const;
    /// Whether the service, as it is now, can be told to stop.
    bool acceptsStop() const;
    void create(const Configuration& configuration);
    void change(const Configuration& configuration);
    /// The entry is gone once the service has stopped and nobody has it open any more.
    void remove();

private:
    const std::wstring m_name;
};

} // namespace devhost::service
