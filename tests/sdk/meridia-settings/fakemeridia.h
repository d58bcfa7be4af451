#pragma once

#include "meridia-settings/meridiasettingsapi.h"

#include <deque>
#include <set>
#include <string>
#include <vector>

/// The client library's functions over scripted answers. One at a time: the functions find it through a global.
class FakeMeridia {
public:
    FakeMeridia();
    ~FakeMeridia();

    std::unique_ptr<vx::meridia::SettingsApi> open();
    vx::meridia::SettingsApi::LoadApi loader();
    /// The next calls answer these codes, later ones the last of them.
    void answer(std::initializer_list<int> codes) { m_codes = codes; }
    vx::meridia::QrlMeridiaError_enum nextCode();
    /// Sends a notification for the latest subscription.
    void notify(const wchar_t* settingName) const;

    std::vector<std::wstring> calls; ///< "SetString 1 name text": function, handle and arguments
    std::set<void*> lentTexts;       ///< not yet given back
    std::wstring text;               ///< of the next text reads
    std::int64_t number = 0;         ///< of the next other reads
    std::uint32_t lastHandle = 0;
    vx::meridia::QrlMeridiaNotification* notification = nullptr;
    void* userData = nullptr;

private:
    std::deque<int> m_codes;
};
