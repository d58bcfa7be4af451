#include "common/windowsupdates/lastinstallation.h"

#include "common/windowsupdates/automaticupdatesdriver.h"
#include "logging/logstream.h"

#include <cstdio>

namespace vx::tarn::common {

using logging::Level;
using logging::LogStream;

namespace {

std::optional<double> readDate(IAutomaticUpdatesDriver& driver)
{
    std::unique_ptr<IAutomaticUpdates> updates;
    if (const std::int32_t result = driver.create(updates); result < 0) {
        LogStream(Level::Error) << "Can't create windows automatic updates instance. HRESULT = " << result;
        return std::nullopt;
    }
    if (!updates) {
        LogStream(Level::Error) << "Could't assign IAutomaticUpdatesPtr to IAutomaticUpdates2Ptr";
        return std::nullopt;
    }
    const auto results = updates->getResults();
    if (!results) {
        LogStream(Level::Error) << "Could't get the automatic update results";
        return std::nullopt;
    }
    const auto date = results->getLastInstallationSuccessDate();
    if (!date)
        LogStream(Level::Info) << "Windows updates has never been installed on this computer";
    return date;
}

std::string toText(const DateTime::Parts& t)
{
    char text[80];
    const int length = std::snprintf(
        text, sizeof(text), "%04u-%02u-%02u %02u:%02u:%02u", t.year, t.month, t.day, t.hour, t.minute, t.second);
    return std::string(text, text + length);
}

// Whole milliseconds, rounded down before the epoch too.
Ticks sinceUnixEpoch(std::uint64_t fileTime)
{
    constexpr std::int64_t unixEpochInSeconds = unixEpochAsFileTime / ticksPerSecond;
    const auto seconds = static_cast<std::int64_t>(fileTime / ticksPerSecond) - unixEpochInSeconds;
    const auto milliseconds = static_cast<std::int64_t>(fileTime / ticksPerMillisecond % 1000);
    return seconds * ticksPerSecond + milliseconds * ticksPerMillisecond;
}

Ticks convert(IAutomaticUpdatesDriver& driver, double date)
{
    const auto time = driver.toSystemTime(date);
    if (!time) {
        LogStream(Level::Error) << "Failed to convert last successfull windows update installation to system time.";
        return neverInstalled;
    }
    LogStream(Level::Info) << "Last successfull windows update was: " << toText(*time);
    std::uint64_t fileTime = 0;
    if (const unsigned long error = driver.toFileTime(*time, fileTime)) {
        LogStream(Level::Error) << "Failed to convert SYSTEMTIME to FILETIME. Last error code: " << error;
        return neverInstalled;
    }
    return sinceUnixEpoch(fileTime);
}

} // namespace

Ticks lastInstallationDate(IAutomaticUpdatesDriver& driver)
{
    const auto date = readDate(driver);
    return date ? convert(driver, *date) : neverInstalled;
}

} // namespace vx::tarn::common
