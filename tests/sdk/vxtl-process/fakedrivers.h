#pragma once

#include "priveleges/policydriver.h"
#include "vxtl-process/users/accountdriver.h"
#include "vxtl/handle.h"

#include <windows.h>

#include <lm.h>

/// The test's own token.
inline vx::SharedHandle ownToken()
{
    HANDLE token = nullptr;
    EXPECT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_ALL_ACCESS, &token));
    return std::make_shared<vx::KernelHandle>(token);
}

/// An account database with one account of settable flags.
struct FakeAccountDriver : vx::users::AccountDriver {
    unsigned long flags = 0;
    vx::users::AccountAnswer controller{0, std::make_shared<std::wstring>()};
    unsigned long userStatus = 0;
    std::vector<std::wstring> queries; ///< server, user and level

    std::wstring computerName() override { return L"HERE"; }
    vx::users::AccountAnswer domainController(const std::wstring&) override { return controller; }
    vx::users::AccountAnswer userInfo(const wchar_t* server, const std::wstring& user, unsigned long level) override
    {
        queries.push_back((server ? server : L"-") + (L"/" + user + L"/") + std::to_wstring(level));
        if (userStatus != 0)
            return {userStatus, nullptr};
        if (level != 1)
            return {0, std::make_shared<USER_INFO_4>()};
        auto record = std::make_shared<USER_INFO_1>();
        record->usri1_flags = flags;
        return {0, record};
    }
};

/// One account's rights; each call fails with the status when that is set.
struct FakePolicyDriver : vx::priveleges::PolicyDriver {
    using Sid = vx::priveleges::Sid;

    long status = 0;
    std::vector<std::wstring> rights;
    std::vector<std::wstring> removed;

    long open(const wchar_t*, unsigned long, std::shared_ptr<void>& policy) override
    {
        policy = std::make_shared<int>();
        return status;
    }
    unsigned long errorOf(long failed) override { return static_cast<unsigned long>(-failed); }
    bool lookUpSid(const wchar_t*, const std::wstring&, Sid&) override { return true; }
    long enumerateRights(void*, const Sid&, std::vector<std::wstring>& result) override
    {
        result = rights;
        return status;
    }
    long addRight(void*, const Sid&, const std::wstring& right) override
    {
        if (status == 0)
            rights.push_back(right);
        return status;
    }
    long removeRight(void*, const Sid&, const std::wstring& right) override
    {
        removed.push_back(right);
        return status;
    }
};
