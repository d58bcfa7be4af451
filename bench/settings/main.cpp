// What the cache adds to a read that the provider answers, with nothing pending. The floor is the provider's bare
// operation: a look-up in a map under a mutex, far less than the real store's call into another process.

#include "bench/comparison.h"
#include "settings-api/cachedsettings.h"
#include "settings-api/exceptions.h"

#include <map>
#include <mutex>
#include <nlohmann/json.hpp>
#include <variant>
#include <vector>

using namespace vx::settings;

namespace {

class MapProvider final : public details::SettingsImpl {
public:
    bool getBoolValue(const std::wstring& name) override { return get<bool>(name); }
    std::int32_t getInt32Value(const std::wstring& name) override { return get<std::int32_t>(name); }
    std::int64_t getInt64Value(const std::wstring& name) override { return get<std::int64_t>(name); }
    double getDoubleValue(const std::wstring& name) override { return get<double>(name); }
    std::wstring getStringValue(const std::wstring& name) override { return get<std::wstring>(name); }
    nlohmann::json getJsonValue(const std::wstring& name) override { return get<nlohmann::json>(name); }
    void setBoolValue(const std::wstring& name, bool value) override { set(name, value); }
    void setInt32Value(const std::wstring& name, std::int32_t value) override { set(name, value); }
    void setInt64Value(const std::wstring& name, std::int64_t value) override { set(name, value); }
    void setDoubleValue(const std::wstring& name, double value) override { set(name, value); }
    void setStringValue(const std::wstring& name, const std::wstring& value) override { set(name, value); }
    void setJsonValue(const std::wstring& name, const nlohmann::json& value) override { set(name, value); }
    SubscriptionId subscribeForChanges(const std::wstring&, const ChangeCallback&) override { return 0; }
    void unsubscribeFromChanges(SubscriptionId) override {}

private:
    template <typename T>
    T get(const std::wstring& name)
    {
        const std::lock_guard lock(m_mutex);
        const auto found = m_values.find(name);
        if (found == m_values.end())
            VX_THROW(NotFoundException, name);
        return std::get<T>(found->second);
    }
    template <typename T>
    void set(const std::wstring& name, const T& value)
    {
        const std::lock_guard lock(m_mutex);
        m_values[name] = value;
    }

    std::mutex m_mutex;
    std::map<std::wstring, std::variant<bool, std::int32_t, std::int64_t, double, std::wstring, nlohmann::json>>
        m_values;
};

std::vector<std::wstring> makeNames(std::size_t count)
{
    std::vector<std::wstring> names;
    for (std::size_t i = 0; i < count; ++i)
        names.push_back(L"windows.tarnpatch.scanning.automatic.setting_" + std::to_wstring(10000 + i));
    return names;
}

template <typename Read>
bench::Measure readInTurn(const std::vector<std::wstring>& names, details::SettingsImpl& settings, Read read)
{
    return bench::perCall(20000, [&settings, &names, read, next = std::size_t(0)]() mutable {
        bench::keep(read(settings, names[next]));
        next = next + 1 < names.size() ? next + 1 : 0;
    });
}

template <typename Write, typename Read>
void compare(bench::Comparison& comparison, const std::string& type, Write write, Read read)
{
    // With ten names the floor is hardly more than its mutex, so there the cache's own cost shows most.
    const std::pair<std::size_t, double> reaches[] = {{10, 5.0}, {200, 2.2}, {2000, 2.2}};
    for (const auto& [count, reach] : reaches) {
        const auto names = makeNames(count);
        const auto provider = std::make_shared<MapProvider>();
        CachedSettings cached(provider);
        for (const auto& name : names)
            write(cached, name);
        comparison.row("cached read of " + type + ", " + std::to_string(count) + " names",
            readInTurn(names, *provider, read), readInTurn(names, cached, read), bench::Reach::timeUpTo(reach));
    }
}

} // namespace

int main()
{
    bench::Comparison comparison("Cached settings, nothing pending; floor: the provider's bare get");
    compare(
        comparison, "int64", [](auto& settings, auto& name) { settings.setInt64Value(name, 1); },
        [](auto& settings, auto& name) { return settings.getInt64Value(name); });
    compare(
        comparison, "bool", [](auto& settings, auto& name) { settings.setBoolValue(name, true); },
        [](auto& settings, auto& name) { return settings.getBoolValue(name); });
    compare(
        comparison, "text", [](auto& settings, auto& name) { settings.setStringValue(name, L"every_monday"); },
        [](auto& settings, auto& name) { return settings.getStringValue(name); });
    return comparison.exitCode();
}
