#pragma once

#include "meridia-settings/meridiasettingsapi.h"
#include "support/thrown.h"

#include <cstring>
#include <deque>

/// A SettingsApi over the client library's functions with scripted answers. One at a time: the functions find the
/// test through a global.
struct MeridiaTest : testing::Test {
    using Api = vx::meridia::QrlMeridiaApi;
    using Error = vx::meridia::QrlMeridiaError_enum;
    using Handle = vx::meridia::QrlMeridiaHandle;

    MeridiaTest()
    {
        open();
        calls.clear();
    }
    void open()
    {
        test = this;
        api = std::make_unique<vx::meridia::SettingsApi>(L"safe", L"sid", L"client", load);
    }
    using Failure = std::pair<int, std::wstring>; ///< code and reason
    template <typename Operation>
    static Failure failureOf(Operation operation)
    {
        const auto failure = support::thrown<vx::QrlMeridiaException>(operation);
        return {static_cast<int>(failure.code()), failure.reason()};
    }
    /// Sends a notification for the latest subscription.
    void notify(const wchar_t* settingName) const { notification(settingName, 3, nullptr, userData); }

    std::deque<int> codes = {0};     ///< what the next calls answer, later ones the last of them
    std::vector<std::wstring> calls; ///< "SetString 1 name text": function, handle and arguments
    std::wstring text;               ///< of the next text reads
    std::int64_t number = 0;         ///< of the next other reads
    Handle lastHandle = 0;
    bool notifiesAtOnce = false; ///< before a subscription returns
    vx::meridia::QrlMeridiaNotification* notification = nullptr;
    void* userData = nullptr;
    std::unique_ptr<vx::meridia::SettingsApi> api;

private:
    template <typename... Arguments>
    static Error note(const wchar_t* function, Handle handle, const Arguments&... arguments)
    {
        std::wstring call = function + (L' ' + std::to_wstring(handle));
        ((call += L' ', call += arguments), ...);
        test->calls.push_back(call);
        const int code = test->codes.front();
        if (test->codes.size() > 1)
            test->codes.pop_front();
        return static_cast<Error>(code);
    }
    template <typename Character>
    static Character* lend()
    {
        auto* copy = new Character[test->text.size() + 1]{};
        std::copy(test->text.begin(), test->text.end(), copy);
        return copy;
    }
    template <typename Result, typename Default>
    static Result get(Handle handle, const wchar_t* name, Default defaultValue, Error* error)
    {
        *error = note(L"Get", handle, name, std::to_wstring(defaultValue));
        return static_cast<Result>(test->number);
    }
    template <typename Value>
    static Error set(Handle handle, const wchar_t* name, Value value)
    {
        return note(L"Set", handle, name, std::to_wstring(value));
    }
    static vx::delayload::LoadStatus load(Api& table)
    {
        table.openHandle = [](const wchar_t* profile, const wchar_t* sid, const wchar_t* client, Error* error) {
            *error = note(L"Open", 0, profile, sid, client);
            return *error == Error::Success ? ++test->lastHandle : 0;
        };
        table.closeHandle = [](Handle handle) { test->calls.push_back(L"Close " + std::to_wstring(handle)); };
        table.getBool = get<std::uint8_t, std::int32_t>;
        table.getInt32 = get<std::int32_t, std::int32_t>;
        table.getInt64 = get<std::int64_t, std::int64_t>;
        table.getString = [](Handle handle, const wchar_t* name, const wchar_t* defaultValue, Error* error) {
            *error = note(L"GetString", handle, name, defaultValue);
            return lend<wchar_t>();
        };
        table.getObjectAsStringUtf8 = [](Handle handle, const wchar_t* name, Error* error) {
            *error = note(L"GetObject", handle, name);
            return lend<char>();
        };
        table.freeString = [](void* lent) { ::operator delete[](lent); };
        table.setBool = set<std::int32_t>;
        table.setInt32 = set<std::int32_t>;
        table.setInt64 = set<std::int64_t>;
        table.setString = [](Handle handle, const wchar_t* name, const wchar_t* value) {
            return note(L"SetString", handle, name, value);
        };
        table.setObjectFromStringUtf8 = [](Handle handle, const wchar_t* name, const char* value) {
            return note(L"SetObject", handle, name, std::wstring(value, value + std::strlen(value)));
        };
        table.subscribe = [](Handle handle, const wchar_t* name, auto* function, void* data) {
            test->notification = function;
            test->userData = data;
            const Error code = note(L"Subscribe", handle, name);
            if (code == Error::Success && test->notifiesAtOnce)
                function(name, 3, nullptr, data);
            return code;
        };
        table.unsubscribe = [](Handle handle, const wchar_t* name, auto* known, void*) {
            return known == test->notification ? note(L"Unsubscribe", handle, name) : Error::InvalidParameter;
        };
        return vx::delayload::LoadStatus::Success;
    }

    static inline MeridiaTest* test = nullptr;
};
