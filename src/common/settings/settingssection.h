#pragma once

#include "settings-api/settings.h"

#include <cstdint>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>

namespace vx::tarn {

/// One level of the tree of keys: holds a share of the store's handle and no values. Reads answer the default
/// when the store throws NotFoundException; whatever else it throws passes on.
class SettingsSection {
public:
    explicit SettingsSection(std::shared_ptr<settings::Settings> store) : m_store(std::move(store)) {}

protected:
    ~SettingsSection() = default;
    SettingsSection(const SettingsSection&) = default;
    SettingsSection& operator=(const SettingsSection&) = default;

    bool readBool(const wchar_t* key, bool defaultValue) const;
    std::int32_t readInt32(const wchar_t* key, std::int32_t defaultValue) const;
    std::int64_t readInt64(const wchar_t* key, std::int64_t defaultValue) const;
    std::wstring readString(const wchar_t* key, const wchar_t* defaultValue) const;
    nlohmann::json readJson(const wchar_t* key, const nlohmann::json& defaultValue) const;

    const settings::Settings& store() const { return *m_store; }

private:
    std::shared_ptr<settings::Settings> m_store;
};

} // namespace vx::tarn
