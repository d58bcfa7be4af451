#include "agent/agentrunner.h"

#include "agent/deployer.h"
#include "agent/outsidesteps.h"
#include "agent/runjournal.h"
#include "agent/say.h"
#include "agent/suspendeddeployment.h"
#include "agent/systemsteps.h"
#include "common/deploymentqueue/ideploymentqueue.h"
#include "common/factory/commonfactory.h"
#include "settings-api/settings.h"
#include "vxtl/parsejson.h"
#include "vxtl/str.h"

#include <nlohmann/json.hpp>
#include <windows.h>

namespace devhost::agent {

namespace {

void linger(const AgentRun& run)
{
    pass(run.gate);
    if (run.gate.waitForEvent.empty() && run.duration.count() > 0) {
        say("working for " + std::to_string(run.duration.count()) + " ms");
        Sleep(static_cast<DWORD>(run.duration.count()));
    }
}

void writeValue(const vx::settings::Settings& settings, const ScriptedValue& scripted)
{
    const auto key = vx::str::fromUtf8(scripted.key);
    const auto& value = scripted.value;
    switch (value.type()) {
    case store::Type::Boolean: return settings.setBoolValue(key, value.asBool());
    case store::Type::Int32: return settings.setInt32Value(key, value.asInt32());
    case store::Type::Int64: return settings.setInt64Value(key, value.asInt64());
    case store::Type::String: return settings.setStringValue(key, vx::str::fromUtf8(value.asString()));
    case store::Type::Object: return settings.setJsonValue(key, vx::parseJson(value.asObject()));
    }
}

} // namespace

std::optional<int> AgentRunner::perform(const AgentRun& run, Task task, const std::string& severity)
{
    if (!run.output.empty())
        say(run.output);
    linger(run);
    if (!run.idle)
        performTask(task, severity);
    if (!run.values.empty())
        write(run.values);
    return takeSteps(run);
}

std::shared_ptr<vx::settings::Settings> AgentRunner::settings()
{
    // Not before something is to be read or written: many runs need no store, and one may have to do without.
    if (!m_settings) {
        m_settings = m_factory.createSettings();
        m_factory.setSettings(m_settings);
    }
    return m_settings;
}

void AgentRunner::performTask(Task task, const std::string& severity)
{
    if (task == Task::Ordinary)
        return;
    if (task == Task::Queue)
        return queue(severity);
    const SuspendedDeployment suspended(m_factory.createPatchStorage());
    if (task == Task::Continue)
        say(suspended.finish() ? "the deployment is finished" : "no deployment waits for a boot");
    else
        say(suspended.complete([this] { return settings(); }) ? "the deployment is complete"
                                                              : "no deployment is to be completed");
}

/// The plug-in sees the queue change, and starts an agent that works on it.
void AgentRunner::queue(const std::string& severity)
{
    say("queuing " + severity);
    m_factory.createDeploymentQueue()->pushBack(vx::str::fromUtf8(severity));
}

void AgentRunner::write(const std::vector<ScriptedValue>& values)
{
    for (const auto& value : values) {
        say("writing " + value.key);
        writeValue(*settings(), value);
    }
}

std::optional<int> AgentRunner::takeSteps(const AgentRun& run)
{
    if (run.steps.empty())
        return std::nullopt;
    SystemSteps system(m_factory);
    OutsideSteps outside(m_factory, m_folder, [this] { return settings(); });
    const auto perform = [&](const auto& kind) {
        if constexpr (std::is_same_v<decltype(kind), const SystemStep&>)
            return system.perform(kind);
        else
            return outside.perform(kind);
    };
    for (const Step& step : run.steps) {
        if (isDeployment(step))
            deploy(*run.deploy);
        const auto result = std::visit(perform, step);
        if (!result.is_null())
            say(nameOf(step) + ": " + result.dump());
        m_journal.appendStep(nameOf(step), result);
        if (outside.failure())
            return outside.failure();
    }
    return std::nullopt;
}

void AgentRunner::deploy(const DeployScript& script)
{
    Deployer(settings(), m_factory.createDeploymentQueue(), m_factory.createPatchStorage()).deploy(script);
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
        // Not null: the compiler may take that write for unreachable.
        *reinterpret_cast<volatile int*>(sizeof(int)) = 0;
        break;
    }
    return run.exitCode;
}

} // namespace devhost::agent
