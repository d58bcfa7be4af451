#include "host/pluginsession.h"

#include "host/exitcode.h"

namespace devhost::host {

namespace {

constexpr std::uint32_t resumeAutomatic = 18;

CommandError noCallback(const char* what)
{
    return CommandError(ExitCode::Failed, std::string("this size of plug-in record has no callback for ") + what);
}

} // namespace

PluginSession::PluginSession(const std::filesystem::path& library, std::string name, std::uint32_t size,
    Listener listener, const Conduct& conduct)
    : m_conduct(conduct), m_name(std::move(name)),
      m_callbacks([this, onState = std::move(listener.onState)](const std::string& plugin, std::uint32_t state) {
          onReport(state);
          onState(plugin, state);
      }),
      m_record(std::make_shared<PluginRecord>(conduct.size.value_or(size))), m_loader(library),
      m_onMainEnded(std::move(listener.onMainEnded))
{
    const auto code = m_conduct.initialize(m_loader, m_name.c_str(), m_callbacks.record(), m_record->get());
    if (code != 0)
        throw CommandError(ExitCode::Failed, "the plug-in refused to initialise: result " + std::to_string(code));
}

PluginSession::~PluginSession()
{
    if (!m_main.joinable())
        return;
    if (waitForEnd(std::chrono::milliseconds(0))) {
        m_main.join();
    } else {
        // Unloading under a running thread would end the host; a leaked library shows that a stop has failed.
        m_main.detach();
        m_loader.leak();
    }
}

void PluginSession::start()
{
    m_end = std::make_shared<MainEnd>();
    m_main = std::thread([end = m_end, record = m_record, listener = m_onMainEnded, main = m_conduct.main] {
        end->code = main(record->get());
        // Before the listener, which may end the host: whoever waits for the end has it by then.
        end->told.set();
        listener(end->code);
    });
}

std::uint32_t PluginSession::stop()
{
    return m_conduct.stop(m_loader, m_record->get());
}

std::optional<std::uint32_t> PluginSession::waitForEnd(std::chrono::milliseconds timeout)
{
    if (!m_end || !m_end->told.wait(static_cast<unsigned long>(timeout.count())))
        return std::nullopt;
    return m_end->code;
}

void PluginSession::resume()
{
    const auto& api = m_record->api();
    if (m_record->holds(offsetof(PluginApi, onSessionChangeEvent)) && api.onPowerEvent)
        api.onPowerEvent(m_record->get(), resumeAutomatic, 0);
    else if (api.onResumeFromLowPowerMode)
        api.onResumeFromLowPowerMode(m_record->get());
    else
        throw noCallback("a resume");
}

void PluginSession::sessionEvent(std::uint32_t type, std::uint32_t data)
{
    const auto& api = m_record->api();
    if (!m_record->holds(sizeof(PluginApi)) || !api.onSessionChangeEvent)
        throw noCallback("session events");
    api.onSessionChangeEvent(m_record->get(), type, data);
}

} // namespace devhost::host
