#include "host/storemonitor.h"

#include "host/printer.h"
#include "keys/keycatalogue.h"
#include "vxtl/credentials.h"

#include <nlohmann/json.hpp>

namespace devhost::host {

namespace {

constexpr std::size_t longestText = 160;
constexpr unsigned long retryPauseMs = 1000;

std::string shorten(std::string text)
{
    if (text.size() <= longestText)
        return text;
    auto end = longestText;
    // not inside of a UTF-8 character
    while ((text[end] & 0xC0) == 0x80)
        --end;
    return text.substr(0, end) + "... (" + std::to_string(text.size()) + " bytes)";
}

} // namespace

store::Value forShow(const store::Value& value)
{
    return value.type() == store::Type::String ? store::Value::fromString(vx::withoutProxyPassword(value.asString()))
                                               : value;
}

void printChange(Printer& printer, store::Client& values, const store::Change& change)
{
    auto value = change.type ? values.get(change.name) : std::nullopt;
    if (value)
        value = forShow(*value);
    nlohmann::json fields = {{"key", change.name}, {"value", nullptr}};
    if (value)
        fields.update(value->toJson());
    printer.event("change", change.name + (value ? " = " + shorten(value->text()) : " removed"), fields);
}

StoreMonitor::StoreMonitor(std::wstring instance, Printer& printer, Profile profile)
    : m_printer(printer), m_profile(profile), m_values(instance), m_changes(std::move(instance)),
      m_thread([this] { waitForStore(); })
{}

StoreMonitor::~StoreMonitor()
{
    m_stop.set();
    m_thread.join();
}

void StoreMonitor::waitForStore()
{
    using namespace std::chrono_literals;
    bool attached = false;
    while (!attached && !m_stop.isSet()) {
        try {
            if (m_values.waitForServer(250ms)) {
                attach();
                attached = true;
            }
        } catch (const store::StoreException& exception) {
            m_printer.event("store", std::string("store: ") + exception.what(), {{"error", exception.what()}});
            m_stop.wait(retryPauseMs);
        }
    }
}

void StoreMonitor::attach()
{
    const std::string profile = keyOf(keys::host.lastSuccessfulUpdateTimestamp);
    if (m_profile == Profile::Provide && !m_values.get(profile))
        m_values.set(profile, store::Value::fromInt64(1));
    // Last: a failure before it is tried again, and there must not be two subscriptions.
    m_changes.subscribe("*", [this](const store::Change& change) { printChange(m_printer, m_values, change); });
}

} // namespace devhost::host
