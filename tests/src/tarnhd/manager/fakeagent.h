#pragma once

#include "common/commonfactory.h"
#include "common/event.h"
#include "common/iprocess.h"
#include "support/record.h"
#include "vxtl/registry.h"

#include <functional>
#include <map>
#include <windows.h>

namespace support {

/// Ends a run of the agent; its handle is the process's.
class EndEvent : public vx::tarn::common::Event {
public:
    explicit EndEvent(bool ended = false) : EndEvent(create(ended)) {}
    const vx::SharedHandle handle;

private:
    explicit EndEvent(const vx::SharedHandle& h) : Event(h), handle(h) {}
    static vx::SharedHandle create(bool ended)
    {
        return std::make_shared<vx::KernelHandle>(CreateEventW(nullptr, TRUE, ended, nullptr));
    }
};

/// One start of the agent: what it answers and when it ends.
struct AgentRun {
    std::uint32_t exitCode = 0;
    bool starts = true;
    std::shared_ptr<EndEvent> ended; ///< null: it has ended at once
    std::function<void()> whileStarting = [] {};
    std::function<void()> beforeExitCode = [] {};
};

/// A factory whose processes are agents after a script; events and registry are real. Runs without an entry in the
/// script end at once with the code of `usual`.
class FakeAgentFactory : public vx::tarn::common::CommonFactory {
public:
    std::map<std::size_t, AgentRun> script; ///< by number of the start, from 1
    AgentRun usual;
    Record starts;                                       ///< "path|arguments"
    std::shared_ptr<vx::tarn::common::Event> startEvent; ///< set: given out instead of the named event
    std::shared_ptr<vx::tarn::common::Event> stopEvent;  ///< set: given out instead of unnamed events

    std::shared_ptr<vx::tarn::common::Event> createEvent(
        bool manual, bool state, const std::wstring& name, bool inherit, void* descriptor) override
    {
        m_events.push_back(vx::tarn::common::createEvent(manual, state, name, inherit, descriptor));
        const auto& replacement = name.empty() ? stopEvent : startEvent;
        return replacement ? replacement : m_events.back();
    }
    std::shared_ptr<vx::registry::Registry> createRegistry() override { return vx::registry::createWin32Registry(); }
    std::shared_ptr<vx::tarn::common::IProcess> createProcess() override { return std::make_shared<Agent>(*this); }

private:
    class Agent : public vx::tarn::common::IProcess {
    public:
        explicit Agent(FakeAgentFactory& factory) : m_factory(factory) {}
        bool start(const std::wstring&, unsigned long, vx::process::Redirect, void*) override { return false; }
        bool start(const std::wstring& path, const std::wstring& arguments, const vx::process::Credentials&) override
        {
            const auto entry = m_factory.script.find(m_factory.starts.size() + 1);
            m_run = entry == m_factory.script.end() ? m_factory.usual : entry->second;
            if (!m_run.ended)
                m_run.ended = std::make_shared<EndEvent>(true);
            m_factory.starts.add(
                std::string(path.begin(), path.end()) + "|" + std::string(arguments.begin(), arguments.end()));
            m_run.whileStarting();
            return m_run.starts;
        }
        void wait() override {}
        std::uint32_t getReturnCode() override
        {
            m_run.beforeExitCode();
            return m_run.exitCode;
        }
        const vx::SharedHandle& getHandle() override { return m_run.ended->handle; }

    private:
        FakeAgentFactory& m_factory;
        AgentRun m_run;
    };
    std::vector<std::shared_ptr<vx::tarn::common::Event>> m_events; ///< the replaced ones must stay openable
};

} // namespace support
