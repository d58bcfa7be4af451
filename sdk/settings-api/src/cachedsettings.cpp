#include "settings-api/cachedsettings.h"

#include "valuekinds.h"

#include "logging/logstream.h"
#include "settings-api/exceptions.h"
#include "synchronize.h"
#include "vxtl/exception.h"
#include "vxtl/scopeexit.h"

namespace vx::settings {

namespace {

using details::SettingsCache;
using logging::Level;
using logging::LogStream;

template <typename Kind>
bool writeThrough(
    SettingsCache& cache, details::SettingsImpl& provider, const std::wstring& name, const typename Kind::Value& value)
{
    const auto passage = cache.beginWrite(name, {Kind::type, Kind::toJson(value), false});
    auto outcome = SettingsCache::Outcome::Failed;
    const ScopeExit written([&] { cache.endWrite(passage, outcome); });
    try {
        (provider.*Kind::set)(name, value);
    } catch (const std::exception& exception) {
        LogStream(Level::Warning) << Kind::writeFailure << name << ". Exception caught: " << What(exception);
        return false;
    }
    outcome = SettingsCache::Outcome::Saved;
    return true;
}

} // namespace

CachedSettings::CachedSettings(std::shared_ptr<details::SettingsImpl> provider) : m_provider(std::move(provider)) {}

CachedSettings::~CachedSettings() = default;

template <typename Kind>
typename Kind::Value CachedSettings::read(const std::wstring& name, const logging::FunctionName& function)
{
    const SettingsCache::Version before = m_cache.version();
    std::optional<typename Kind::Value> value;
    try {
        value.emplace((m_provider.get()->*Kind::get)(name));
    } catch (const std::exception& exception) {
        LogStream(Level::Warning) << Kind::readFailure << name << ". Exception caught: " << What(exception)
                                  << ". Will be used a cached value";
        return readCached<Kind>(name, function);
    }
    // What is pending goes out first, and then the older value that was just read takes its place.
    const details::SynchronizeResult synchronized = synchronize();
    m_cache.storeRead(name, {Kind::type, Kind::toJson(*value), true}, before, synchronized);
    return std::move(*value);
}

template <typename Kind>
typename Kind::Value CachedSettings::readCached(const std::wstring& name, const logging::FunctionName& function) const
{
    const auto cached = m_cache.find(name);
    if (!cached)
        VX_THROW_FROM(NotFoundException, function, L"Cached value doesn't exist");
    return Kind::fromJson(*cached);
}

template <typename Kind>
void CachedSettings::write(const std::wstring& name, const typename Kind::Value& value)
{
    if (writeThrough<Kind>(m_cache, *m_provider, name, value))
        synchronize();
}

details::SynchronizeResult CachedSettings::synchronize()
{
    const auto result = details::synchronize(m_cache, *m_provider);
    if (result == details::SynchronizeResult::Incomplete)
        LogStream(Level::Warning) << "Failed to synchronize cached settings with settings provider.";
    return result;
}

bool CachedSettings::getBoolValue(const std::wstring& name)
{
    VX_LOG_SCOPE();
    return read<details::BoolKind>(name, vxScopeName);
}

std::int32_t CachedSettings::getInt32Value(const std::wstring& name)
{
    VX_LOG_SCOPE();
    return read<details::Int32Kind>(name, vxScopeName);
}

std::int64_t CachedSettings::getInt64Value(const std::wstring& name)
{
    VX_LOG_SCOPE();
    return read<details::Int64Kind>(name, vxScopeName);
}

double CachedSettings::getDoubleValue(const std::wstring& name)
{
    VX_LOG_SCOPE();
    return read<details::DoubleKind>(name, vxScopeName);
}

std::wstring CachedSettings::getStringValue(const std::wstring& name)
{
    VX_LOG_SCOPE();
    return read<details::StringKind>(name, vxScopeName);
}

nlohmann::json CachedSettings::getJsonValue(const std::wstring& name)
{
    VX_LOG_SCOPE();
    return read<details::JsonKind>(name, vxScopeName);
}

void CachedSettings::setBoolValue(const std::wstring& name, bool value)
{
    VX_LOG_SCOPE();
    write<details::BoolKind>(name, value);
}

void CachedSettings::setInt32Value(const std::wstring& name, std::int32_t value)
{
    VX_LOG_SCOPE();
    write<details::Int32Kind>(name, value);
}

void CachedSettings::setInt64Value(const std::wstring& name, std::int64_t value)
{
    VX_LOG_SCOPE();
    write<details::Int64Kind>(name, value);
}

void CachedSettings::setDoubleValue(const std::wstring& name, double value)
{
    VX_LOG_SCOPE();
    write<details::DoubleKind>(name, value);
}

void CachedSettings::setStringValue(const std::wstring& name, const std::wstring& value)
{
    VX_LOG_SCOPE();
    write<details::StringKind>(name, value);
}

void CachedSettings::setJsonValue(const std::wstring& name, const nlohmann::json& value)
{
    VX_LOG_SCOPE();
    write<details::JsonKind>(name, value);
}

SubscriptionId CachedSettings::subscribeForChanges(const std::wstring& name, const ChangeCallback& callback)
{
    VX_LOG_SCOPE();
    return m_provider->subscribeForChanges(name, callback);
}

void CachedSettings::unsubscribeFromChanges(SubscriptionId id)
{
    VX_LOG_SCOPE();
    m_provider->unsubscribeFromChanges(id);
}

} // namespace vx::settings
