#pragma once

#include <cstdint>
#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <string>

namespace vx::settings {

/// Names a subscription; valid until it is unsubscribed.
using SubscriptionId = std::intptr_t;
/// Takes the name of the changed setting. Runs on a thread of the provider.
using ChangeCallback = std::function<void(const std::wstring& name)>;

namespace details {

/// A provider of typed settings. Names are full dotted keys. Reads and writes throw the
/// SettingsException family or ErrorCodeException; any thread may call them. It declares no
/// destructor: owners hold implementations through shared pointers made of the concrete type.
class SettingsImpl {
public:
    virtual bool getBoolValue(const std::wstring& name) = 0;
    virtual std::int32_t getInt32Value(const std::wstring& name) = 0;
    virtual std::int64_t getInt64Value(const std::wstring& name) = 0;
    virtual double getDoubleValue(const std::wstring& name) = 0;
    virtual std::wstring getStringValue(const std::wstring& name) = 0;
    virtual nlohmann::json getJsonValue(const std::wstring& name) = 0;
    virtual void setBoolValue(const std::wstring& name, bool value) = 0;
    virtual void setInt32Value(const std::wstring& name, std::int32_t value) = 0;
    virtual void setInt64Value(const std::wstring& name, std::int64_t value) = 0;
    virtual void setDoubleValue(const std::wstring& name, double value) = 0;
    virtual void setStringValue(const std::wstring& name, const std::wstring& value) = 0;
    virtual void setJsonValue(const std::wstring& name, const nlohmann::json& value) = 0;
    virtual SubscriptionId subscribeForChanges(const std::wstring& name, const ChangeCallback& callback) = 0;
    virtual void unsubscribeFromChanges(SubscriptionId id) = 0;

protected:
    ~SettingsImpl() = default;
};

} // namespace details

} // namespace vx::settings
