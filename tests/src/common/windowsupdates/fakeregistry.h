#pragma once

#include "vxtl/registry.h"

#include <map>
#include <optional>
#include <stdexcept>

/// Numbers below keys that are there; nothing makes a key. Other calls than the few that are answered are refused.
struct FakeRegistry : vx::registry::details::RegistryImpl {
    using View = vx::registry::View;
    using Name = const std::wstring&;
    using Impl = std::shared_ptr<vx::registry::details::RegistryKeyImpl>;
    using Strings = std::vector<std::wstring>;
    using Bytes = std::vector<std::uint8_t>;
    using Values = std::map<std::wstring, std::int32_t>;
    [[noreturn]] static void refuse() { throw std::logic_error("refused"); }

    struct Key : vx::registry::details::RegistryKeyImpl {
        Key(Values& keyValues, bool writes) : values(keyValues), mayWrite(writes) {}
        std::int32_t getInt32Value(Name name) const override
        {
            return values.contains(name) ? values[name] : throw std::runtime_error("no value");
        }
        void setInt32Value(Name name, std::int32_t value) override
        {
            mayWrite ? void(values[name] = value) : throw std::runtime_error("denied");
        }
        Impl openKey(Name, unsigned long, View) const override { refuse(); }
        Impl createKey(Name, unsigned long, unsigned long, View) override { refuse(); }
        bool isCreated() const override { refuse(); }
        bool doesValueExist(Name) const override { refuse(); }
        bool doesKeyExist(Name, View) const override { refuse(); }
        Strings getKeys() const override { refuse(); }
        Strings getValues() const override { refuse(); }
        std::int64_t getInt64Value(Name) const override { refuse(); }
        std::wstring getStringValue(Name) const override { refuse(); }
        Strings getMultiStringValue(Name) const override { refuse(); }
        Bytes getBinaryValue(Name) const override { refuse(); }
        void setInt64Value(Name, std::int64_t) override { refuse(); }
        void setStringValue(Name, Name) override { refuse(); }
        void setMultiStringValue(Name, const Strings&) override { refuse(); }
        void setBinaryValue(Name, const Bytes&) override { refuse(); }
        void deleteValue(Name) override { refuse(); }
        void deleteKey(Name, View) override { refuse(); }
        void deleteTree(Name) override { refuse(); }
        Values& values;
        bool mayWrite;
    };

    Impl openKey(Name name, unsigned long access, View) const override
    {
        opened.emplace_back(name, access);
        return keys.contains(name) ? std::make_shared<Key>(keys[name], !readOnly.contains(name))
                                   : throw std::runtime_error("no key");
    }
    Impl createKey(Name, unsigned long, unsigned long, View) override { refuse(); }
    void deleteKey(Name, View) override { refuse(); }
    void deleteTree(Name) override { refuse(); }
    bool doesKeyExist(Name, View) const override { refuse(); }
    Impl classesRoot() const override { refuse(); }
    Impl currentConfig() const override { refuse(); }
    Impl currentUser() const override { refuse(); }
    Impl localMachine() const override { refuse(); }
    Impl users() const override { refuse(); }

    mutable std::map<std::wstring, Values> keys;
    mutable std::vector<std::pair<std::wstring, unsigned long>> opened; ///< names with the access asked for
    std::map<std::wstring, bool> readOnly;                              ///< keys whose values can't be written
};
