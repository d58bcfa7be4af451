#include "agent/agentrunner.h"

#include "settings-api/settings.h"
#include "vxtl/str.h"

#include <cstdio>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <windows.h>

namespace devhost::agent {

namespace {

void say(const std::string& line)
{
    std::printf("tarnag: %s\n", line.c_str());
    std::fflush(stdout);
}

/// Made when it does not exist yet, so that neither side has to come first.
class NamedEvent {
public:
    explicit NamedEvent(const std::string& name)
        : m_handle(CreateEventW(nullptr, TRUE, FALSE, vx::str::fromUtf8(name).c_str()))
    {
        if (!m_handle)
            throw std::runtime_error("event " + name + ": error " + std::to_string(GetLastError()));
    }
    ~NamedEvent() { CloseHandle(m_handle); }
    NamedEvent(const NamedEvent&) = delete;
    NamedEvent& operator=(const NamedEvent&) = delete;

    void set() { SetEvent(m_handle); }
    void wait() { WaitForSingleObject(m_handle, INFINITE); }

private:
    HANDLE m_handle;
};

void linger(const AgentRun& run)
{
    if (!run.waitForEvent.empty()) {
        say("waiting for the event " + run.waitForEvent);
        NamedEvent(run.waitForEvent).wait();
    } else if (run.duration.count() > 0) {
        say("working for " + std::to_string(run.duration.count()) + " ms");
        Sleep(static_cast<DWORD>(run.duration.count()));
    }
}

void writeValue(const vx::settings::Settings& settings, const ScriptedValue& scripted)
{
    const auto key = vx::str::fromUtf8(scripted.key);
    const auto value = nlohmann::json::parse(scripted.json);
    switch (scripted.type) {
    case store::Type::Boolean: return settings.setBoolValue(key, value.get<bool>());
    case store::Type::Int32: return settings.setInt32Value(key, value.get<std::int32_t>());
    case store::Type::Int64: return settings.setInt64Value(key, value.get<std::int64_t>());
    case store::Type::String: return settings.setStringValue(key, vx::str::fromUtf8(value.get<std::string>()));
    case store::Type::Object: return settings.setJsonValue(key, value);
    }
}

} // namespace

void AgentRunner::perform(const AgentRun& run) const
{
    if (!run.output.empty())
        say(run.output);
    // Stays open over the wait: the event must not vanish before somebody has looked at it.
    std::optional<NamedEvent> started;
    if (!run.startedEvent.empty())
        started.emplace(run.startedEvent).set();
    linger(run);
    if (!run.values.empty())
        write(run.values);
}

void AgentRunner::write(const std::vector<ScriptedValue>& values) const
{
    const auto settings = m_makeSettings();
    for (const auto& value : values) {
        say("writing " + value.key);
        writeValue(*settings, value);
    }
}

int AgentRunner::end(const AgentRun& run)
{
    switch (run.ending) {
    case Ending::Exit: break;
    case Ending::Hang:
        say("hanging");
        Sleep(INFINITE);
        break;
    case Ending::Crash:
        say("crashing");
        *reinterpret_cast<volatile int*>(sizeof(int)) = 0;
        break;
    }
    return run.exitCode;
}

} // namespace devhost::agent
