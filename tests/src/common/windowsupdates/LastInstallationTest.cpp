#include "common/windowsupdates/lastinstallation.h"
#include "common/windowsupdates/automaticupdatesdriver.h"
#include "support/logcapture.h"
#include "support/machine.h"
#include "support/thrown.h"
#include "vxtl-com/bstr.h"
#include "vxtl-com/comptr.h"
#include "vxtl/comexception.h"

#include <cmath>

#include <windows.h>

#include <oleauto.h>

using namespace vx;
using namespace vx::tarn::common;
using com::Bstr;
using com::ComPtr;
using testing::HasSubstr;

namespace {

/// The system's, but for the last conversion, which gives what a test has set, if anything.
struct Driver : AutomaticUpdatesDriver {
    unsigned long toFileTime(const DateTime::Parts& time, std::uint64_t& result) override
    {
        const unsigned long error = AutomaticUpdatesDriver::toFileTime(time, result);
        result = fileTime ? static_cast<std::uint64_t>(*fileTime) : result;
        return error;
    }
    std::optional<std::int64_t> fileTime;
};

struct LastInstallationTest : testing::Test {
    static void installed(const std::string& date)
    {
        support::Machine::change([&](auto& state) { state.lastInstallation = date; });
    }

    support::Machine machine;
    Driver driver;
    support::LogCapture log;
};

} // namespace

TEST_F(LastInstallationTest, isNoneAfterAnyFailureAndSaysWhich)
{
    const struct {
        const char* call;
        HRESULT planned;
        const char* date;
        int level;
        const char* logged;
    } rows[] = {
        {"AutomaticUpdates::CreateInstance", -5, "", 2,
            "Can't create windows automatic updates instance. HRESULT = -5"},
        {"AutomaticUpdates::CreateInstance", S_OK, "", 2,
            "Could't assign IAutomaticUpdatesPtr to IAutomaticUpdates2Ptr"},
        {"IAutomaticUpdates2::QueryInterface", S_OK, "", 2,
            "Could't assign IAutomaticUpdatesPtr to IAutomaticUpdates2Ptr"},
        {"IAutomaticUpdates2::get_Results", S_OK, "", 2, "Could't get the automatic update results"},
        {"", S_OK, "", 4, "Windows updates has never been installed on this computer"},
        {"", S_OK, "no date", 2, "Failed to convert last successfull windows update installation to system time."},
        {"", S_OK, "0099-12-31T00:00:00", 2,
            "Failed to convert last successfull windows update installation to system time."},
        {"", S_OK, "1600-12-31T00:00:00", 2, "Failed to convert SYSTEMTIME to FILETIME. Last error code: 87"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.logged);
        machine.plan(row.call, {row.planned});
        installed(row.date);
        EXPECT_EQ(lastInstallationDate(driver), neverInstalled);
        EXPECT_TRUE(log.has(row.level, row.logged)) << log.text();
    }
    EXPECT_EQ(driver.toSystemTime(std::nan("")), std::nullopt);
}

TEST_F(LastInstallationTest, countsWholeMillisecondsFromTheUnixEpoch)
{
    machine.plan("IRunnableObject::QueryInterface", {E_NOINTERFACE});
    installed("2024-02-09T01:02:03");
    EXPECT_EQ(lastInstallationDate(driver), 1'707'440'523 * ticksPerSecond);
    EXPECT_TRUE(log.has(4, "Last successfull windows update was: 2024-02-09 01:02:03")) << log.text();
    EXPECT_TRUE(machine.state().plannedFailures.empty()) << "the server was told to run";
    const std::pair<std::int64_t, Ticks> rows[] = {{12'345'678, 12'340'000}, {-1, -10'000}};
    for (const auto& [sinceEpoch, date] : rows) {
        driver.fileTime = unixEpochAsFileTime + sinceEpoch;
        EXPECT_EQ(lastInstallationDate(driver), date);
    }
}

TEST_F(LastInstallationTest, throwsWithTheErrorObjectOfTheCallAndNoneOfAnEarlierOne)
{
    ComPtr<ICreateErrorInfo> error;
    ComPtr<IErrorInfo> info;
    ASSERT_EQ(CreateErrorInfo(error.put()), S_OK);
    error->SetSource(Bstr(L"the updates").get());
    error->QueryInterface(__uuidof(IErrorInfo), reinterpret_cast<void**>(info.put()));
    SetErrorInfo(0, info.get());
    for (const std::string call :
        {"IAutomaticUpdates2::get_Results", "IAutomaticUpdatesResults::get_LastInstallationSuccessDate"}) {
        machine.plan(call, {E_ACCESSDENIED});
        const auto failure = support::thrown<ComException>([&] { lastInstallationDate(driver); });
        EXPECT_EQ(failure.result(), E_ACCESSDENIED);
        EXPECT_THAT(failure.what(),
            testing::AllOf(HasSubstr(call.substr(call.find("get_")) + " failed"), Not(HasSubstr("the updates"))));
    }
}
