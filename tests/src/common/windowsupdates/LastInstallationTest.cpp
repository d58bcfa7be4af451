#include "common/windowsupdates/lastinstallation.h"
#include "common/windowsupdates/automaticupdatesdriver.h"
#include "support/logcapture.h"

#include <gtest/gtest.h>

using namespace vx;
using namespace vx::tarn::common;

namespace {

/// The call that fails, or gives nothing; each one before it succeeds.
enum class Failing { Create, Interface, Results, Date, SystemTime, FileTime, None };

struct Driver : IAutomaticUpdatesDriver {
    struct Results : IUpdateResults {
        explicit Results(Driver& driver) : owner(driver) {}
        std::optional<double> getLastInstallationSuccessDate() override
        {
            return owner.failing == Failing::Date ? std::nullopt : std::optional(1.5);
        }
        Driver& owner;
    };
    struct Updates : IAutomaticUpdates {
        explicit Updates(Driver& driver) : owner(driver) {}
        std::unique_ptr<IUpdateResults> getResults() override
        {
            return owner.failing == Failing::Results ? nullptr : std::make_unique<Results>(owner);
        }
        Driver& owner;
    };
    std::int32_t create(std::unique_ptr<IAutomaticUpdates>& updates) override
    {
        if (failing != Failing::Create && failing != Failing::Interface)
            updates = std::make_unique<Updates>(*this);
        return failing == Failing::Create ? -2147467262 : 1;
    }
    std::optional<DateTime::Parts> toSystemTime(double date) override
    {
        EXPECT_EQ(date, 1.5);
        if (failing == Failing::SystemTime)
            return {};
        return DateTime::Parts{2024, 2, 9, 1, 2, 3, 4};
    }
    unsigned long toFileTime(const DateTime::Parts& time, std::uint64_t& result) override
    {
        EXPECT_EQ(time.day, 9u);
        result = fileTime;
        return failing == Failing::FileTime ? 87 : 0;
    }
    Failing failing = Failing::None;
    std::uint64_t fileTime = unixEpochAsFileTime;
};

} // namespace

TEST(LastInstallation, isNoneAfterAnyFailureAndSaysWhich)
{
    const struct {
        Failing failing;
        int level;
        const char* logged;
    } rows[] = {
        {Failing::Create, 2, "Can't create windows automatic updates instance. HRESULT = -2147467262"},
        {Failing::Interface, 2, "Could't assign IAutomaticUpdatesPtr to IAutomaticUpdates2Ptr"},
        {Failing::Results, 2, "Could't get the automatic update results"},
        {Failing::Date, 4, "Windows updates has never been installed on this computer"},
        {Failing::SystemTime, 2, "Failed to convert last successfull windows update installation to system time."},
        {Failing::FileTime, 2, "Failed to convert SYSTEMTIME to FILETIME. Last error code: 87"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.logged);
        const support::LogCapture log;
        Driver driver;
        driver.failing = row.failing;
        EXPECT_EQ(lastInstallationDate(driver), std::numeric_limits<std::int64_t>::min());
        EXPECT_TRUE(log.has(row.level, row.logged)) << log.text();
        EXPECT_EQ(log.lines().size(), row.failing == Failing::FileTime ? 2u : 1u) << log.text();
    }
}

TEST(LastInstallation, countsWholeMillisecondsFromTheUnixEpoch)
{
    const support::LogCapture log;
    const struct {
        std::int64_t fileTime, date;
    } rows[] = {{unixEpochAsFileTime, 0}, {unixEpochAsFileTime + 12'345'678, 12'340'000},
        {unixEpochAsFileTime - 1, -10'000}, {0, -unixEpochAsFileTime}};
    for (const auto& row : rows) {
        Driver driver;
        driver.fileTime = static_cast<std::uint64_t>(row.fileTime);
        EXPECT_EQ(lastInstallationDate(driver), row.date);
    }
    EXPECT_TRUE(log.has(4, "Last successfull windows update was: 2024-02-09 01:02:03")) << log.text();
}
