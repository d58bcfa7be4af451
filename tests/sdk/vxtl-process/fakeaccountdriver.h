#pragma once

#include "vxtl-process/users/accountdriver.h"

#include <windows.h>

#include <lm.h>

/// An account database with one account of settable flags and privilege.
struct FakeAccountDriver : vx::users::AccountDriver {
    unsigned long flags = 0;
    unsigned long privilege = 0;
    vx::users::AccountAnswer controller{0, std::make_shared<std::wstring>()};
    unsigned long userStatus = 0;
    std::vector<std::wstring> controllerQueries;
    std::vector<std::wstring> userQueries; ///< server, user and level

    std::wstring computerName() override { return L"HERE"; }

    vx::users::AccountAnswer domainController(const std::wstring& domain) override
    {
        controllerQueries.push_back(domain);
        return controller;
    }

    vx::users::AccountAnswer userInfo(const wchar_t* server, const std::wstring& user, unsigned long level) override
    {
        userQueries.push_back((server ? server : L"-") + (L"/" + user + L"/") + std::to_wstring(level));
        if (userStatus != 0)
            return {userStatus, nullptr};
        if (level != 1)
            return {0, std::make_shared<USER_INFO_4>()};
        auto record = std::make_shared<USER_INFO_1>();
        record->usri1_flags = flags;
        record->usri1_priv = privilege;
        return {0, record};
    }
};
