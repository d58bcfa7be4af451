#pragma once

#include "meridia-settings/meridiasettingsapi.h"

#include <cstring>
#include <deque>
#include <set>

/// The client library's functions over scripted answers. One at a time: the functions find it through a global.
class FakeMeridia {
public:
    using Error = vx::meridia::QrlMeridiaError_enum;
    using Handle = vx::meridia::QrlMeridiaHandle;
    using Notification = vx::meridia::QrlMeridiaNotification;

    FakeMeridia() { fake = this; }

    std::unique_ptr<vx::meridia::SettingsApi> open()
    {
        auto api = std::make_unique<vx::meridia::SettingsApi>(L"safe", L"sid", L"client", load);
        opening.swap(calls);
        calls.clear();
        return api;
    }
    /// The next calls answer these codes, later ones the last of them.
    void answer(std::initializer_list<int> codes) { m_codes = codes; }
    /// Sends a notification for the latest subscription.
    void notify(const wchar_t* settingName) const { notification(settingName, 3, nullptr, userData); }

    std::vector<std::wstring> calls;   ///< "SetString 1 name text": function, handle and arguments
    std::vector<std::wstring> opening; ///< those of the latest open()
    std::set<void*> lentTexts;         ///< not yet given back
    std::wstring text;                 ///< of the next text reads
    std::int64_t number = 0;           ///< of the next other reads
    Handle lastHandle = 0;
    Notification* notification = nullptr;
    void* userData = nullptr;

private:
    static vx::delayload::LoadStatus load(vx::meridia::QrlMeridiaApi& api);

    template <typename... Arguments>
    static Error note(const wchar_t* function, Handle handle, const Arguments&... arguments)
    {
        std::wstring call = function + (L' ' + std::to_wstring(handle));
        ((call += L' ', call += arguments), ...);
        fake->calls.push_back(call);
        const int code = fake->m_codes.front();
        if (fake->m_codes.size() > 1)
            fake->m_codes.pop_front();
        return static_cast<Error>(code);
    }
    template <typename Character>
    static Character* lend()
    {
        auto* copy = new Character[fake->text.size() + 1]{};
        std::copy(fake->text.begin(), fake->text.end(), copy);
        fake->lentTexts.insert(copy);
        return copy;
    }
    template <typename Result, typename Default>
    static Result get(Handle handle, const wchar_t* name, Default defaultValue, Error* error)
    {
        *error = note(L"Get", handle, name, std::to_wstring(defaultValue));
        return static_cast<Result>(fake->number);
    }
    template <typename Value>
    static Error set(Handle handle, const wchar_t* name, Value value)
    {
        return note(L"Set", handle, name, std::to_wstring(value));
    }

    static inline FakeMeridia* fake = nullptr;
    std::deque<int> m_codes = {0};
};

inline vx::delayload::LoadStatus FakeMeridia::load(vx::meridia::QrlMeridiaApi& api)
{
    api.openHandle = [](const wchar_t* profile, const wchar_t* sid, const wchar_t* client, Error* error) -> Handle {
        *error = note(L"Open", 0, profile, sid, client);
        return *error == Error::Success ? ++fake->lastHandle : 0;
    };
    api.closeHandle = [](Handle handle) { fake->calls.push_back(L"Close " + std::to_wstring(handle)); };
    api.getBool = get<std::uint8_t, std::int32_t>;
    api.getInt32 = get<std::int32_t, std::int32_t>;
    api.getInt64 = get<std::int64_t, std::int64_t>;
    api.getString = [](Handle handle, const wchar_t* name, const wchar_t* defaultValue, Error* error) {
        *error = note(L"GetString", handle, name, defaultValue);
        return lend<wchar_t>();
    };
    api.getObjectAsStringUtf8 = [](Handle handle, const wchar_t* name, Error* error) {
        *error = note(L"GetObject", handle, name);
        return lend<char>();
    };
    api.freeString = [](void* text) {
        fake->lentTexts.erase(text);
        ::operator delete[](text);
    };
    api.setBool = set<std::int32_t>;
    api.setInt32 = set<std::int32_t>;
    api.setInt64 = set<std::int64_t>;
    api.setString = [](Handle handle, const wchar_t* name, const wchar_t* text) {
        return note(L"SetString", handle, name, text);
    };
    api.setObjectFromStringUtf8 = [](Handle handle, const wchar_t* name, const char* text) {
        return note(L"SetObject", handle, name, std::wstring(text, text + std::strlen(text)));
    };
    api.subscribe = [](Handle handle, const wchar_t* name, Notification* notification, void* data) {
        fake->notification = notification;
        fake->userData = data;
        return note(L"Subscribe", handle, name);
    };
    api.unsubscribe = [](Handle handle, const wchar_t* name, Notification* notification, void*) {
        return notification == fake->notification ? note(L"Unsubscribe", handle, name) : Error::InvalidParameter;
    };
    return vx::delayload::LoadStatus::Success;
}
