#pragma once

#include <filesystem>
#include <thread>

/// Runs tarnctl.exe of that folder with these arguments to its end, its output thrown away; gives the milliseconds.
/// Throws std::runtime_error where it can't be started.
double runTarnctl(const std::filesystem::path& folder, const wchar_t* arguments);

/// Runs `tarnctl health` again and again, for as long as it lives.
class Observer {
public:
    explicit Observer(const std::filesystem::path& folder);
    ~Observer();
    Observer(const Observer&) = delete;
    Observer& operator=(const Observer&) = delete;

private:
    void* m_stop; ///< an event
    std::thread m_thread;
};

/// The row of how long `tarnctl health` takes, beside a start of the program that looks at nothing; while a host runs
/// in this process, whose instance the environment names. True when the reach is met.
bool measureHealth(const std::filesystem::path& folder);
