#pragma once

#include "settings-api/settings.h"

#include <map>

/// A store in memory that keeps JSON as text, so that reading parses and writing dumps as with the host's store.
/// Only JSON values. One thread.
class TextStore final : public vx::settings::details::SettingsImpl {
public:
    /// The kept text of a name, to be read and set without any JSON work.
    std::string& text(const std::wstring& name) { return m_texts[name]; }

    nlohmann::json getJsonValue(const std::wstring& name) override;
    void setJsonValue(const std::wstring& name, const nlohmann::json& value) override;

    bool getBoolValue(const std::wstring& name) override;
    std::int32_t getInt32Value(const std::wstring& name) override;
    std::int64_t getInt64Value(const std::wstring& name) override;
    double getDoubleValue(const std::wstring& name) override;
    std::wstring getStringValue(const std::wstring& name) override;
    void setBoolValue(const std::wstring&, bool) override {}
    void setInt32Value(const std::wstring&, std::int32_t) override {}
    void setInt64Value(const std::wstring&, std::int64_t) override {}
    void setDoubleValue(const std::wstring&, double) override {}
    void setStringValue(const std::wstring&, const std::wstring&) override {}
    vx::settings::SubscriptionId subscribeForChanges(const std::wstring&, const vx::settings::ChangeCallback&) override
    {
        return 0;
    }
    void unsubscribeFromChanges(vx::settings::SubscriptionId) override {}

private:
    std::map<std::wstring, std::string> m_texts;
};
