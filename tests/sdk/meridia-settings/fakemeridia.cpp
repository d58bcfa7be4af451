#include "fakemeridia.h"

#include <cstring>

using namespace vx::meridia;
using Error = QrlMeridiaError_enum;

namespace {

FakeMeridia* fake = nullptr;

template <typename... Arguments>
Error note(const wchar_t* function, QrlMeridiaHandle handle, const Arguments&... arguments)
{
    std::wstring call = function + (L' ' + std::to_wstring(handle));
    ((call += L' ', call += arguments), ...);
    fake->calls.push_back(call);
    return fake->nextCode();
}

template <typename Character>
Character* lend(const std::wstring& text)
{
    auto* copy = new Character[text.size() + 1]{};
    std::copy(text.begin(), text.end(), copy);
    fake->lentTexts.insert(copy);
    return copy;
}

QrlMeridiaHandle VX_CDECL openHandle(const wchar_t* profile, const wchar_t* sid, const wchar_t* client, Error* error)
{
    *error = note(L"Open", 0, profile, sid, client);
    return *error == Error::Success ? ++fake->lastHandle : 0;
}

void VX_CDECL closeHandle(QrlMeridiaHandle handle)
{
    fake->calls.push_back(L"Close " + std::to_wstring(handle));
}

template <typename Result, typename Default>
Result VX_CDECL get(QrlMeridiaHandle handle, const wchar_t* name, Default defaultValue, Error* error)
{
    *error = note(L"Get", handle, name, std::to_wstring(defaultValue));
    return static_cast<Result>(fake->number);
}

wchar_t* VX_CDECL getString(QrlMeridiaHandle handle, const wchar_t* name, const wchar_t* defaultValue, Error* error)
{
    *error = note(L"GetString", handle, name, defaultValue);
    return lend<wchar_t>(fake->text);
}

char* VX_CDECL getObject(QrlMeridiaHandle handle, const wchar_t* name, Error* error)
{
    *error = note(L"GetObject", handle, name);
    return lend<char>(fake->text);
}

void VX_CDECL freeString(void* text)
{
    fake->lentTexts.erase(text);
    ::operator delete[](text);
}

template <typename Value>
Error VX_CDECL set(QrlMeridiaHandle handle, const wchar_t* name, Value value)
{
    return note(L"Set", handle, name, std::to_wstring(value));
}

Error VX_CDECL setString(QrlMeridiaHandle handle, const wchar_t* name, const wchar_t* text)
{
    return note(L"SetString", handle, name, text);
}

Error VX_CDECL setObject(QrlMeridiaHandle handle, const wchar_t* name, const char* text)
{
    return note(L"SetObject", handle, name, std::wstring(text, text + std::strlen(text)));
}

Error VX_CDECL subscribe(QrlMeridiaHandle handle, const wchar_t* name, QrlMeridiaNotification* notification, void* data)
{
    fake->notification = notification;
    fake->userData = data;
    return note(L"Subscribe", handle, name);
}

Error VX_CDECL unsubscribe(QrlMeridiaHandle handle, const wchar_t* name, QrlMeridiaNotification* notification, void*)
{
    return notification == fake->notification ? note(L"Unsubscribe", handle, name) : Error::InvalidParameter;
}

} // namespace

FakeMeridia::FakeMeridia()
{
    fake = this;
}

FakeMeridia::~FakeMeridia()
{
    fake = nullptr;
}

SettingsApi::LoadApi FakeMeridia::loader()
{
    return [](QrlMeridiaApi& api) {
        api = {openHandle, closeHandle, get<std::uint8_t, std::int32_t>, get<std::int32_t, std::int32_t>,
            get<std::int64_t, std::int64_t>, getString, getObject, freeString, set<std::int32_t>, set<std::int32_t>,
            set<std::int64_t>, setString, setObject, subscribe, unsubscribe};
        return vx::delayload::LoadStatus::Success;
    };
}

std::unique_ptr<SettingsApi> FakeMeridia::open()
{
    auto api = std::make_unique<SettingsApi>(L"safe", L"S-1-5-18", L"client", loader());
    calls.clear();
    return api;
}

QrlMeridiaError_enum FakeMeridia::nextCode()
{
    if (m_codes.empty())
        return Error::Success;
    const int code = m_codes.front();
    if (m_codes.size() > 1)
        m_codes.pop_front();
    return static_cast<Error>(code);
}

void FakeMeridia::notify(const wchar_t* settingName) const
{
    notification(settingName, 3, nullptr, userData);
}
