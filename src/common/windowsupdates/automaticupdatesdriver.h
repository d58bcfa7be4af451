#pragma once

#include "vxtl/datetime.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace vx::tarn::common {

/// What the system's automatic updates have done so far.
class IUpdateResults {
public:
    virtual ~IUpdateResults() = default;
    /// Days since 1899-12-30, as Automation counts them: nothing when there has been no installation, no number when
    /// the system gives something else than a date. Throws ComException.
    virtual std::optional<double> getLastInstallationSuccessDate() = 0;
};

/// The system's automatic updates.
class IAutomaticUpdates {
public:
    virtual ~IAutomaticUpdates() = default;
    /// Empty when the system has none. Throws ComException.
    virtual std::unique_ptr<IUpdateResults> getResults() = 0;
};

/// Makes them, and converts their dates. Any thread that is in an apartment.
class IAutomaticUpdatesDriver {
public:
    virtual ~IAutomaticUpdatesDriver() = default;
    /// Gives the system's result, negative for a failure. A success may leave `updates` empty too.
    virtual std::int32_t create(std::unique_ptr<IAutomaticUpdates>& updates) = 0;
    /// Calendar time of an Automation date; nothing for one that has none.
    virtual std::optional<DateTime::Parts> toSystemTime(double date) = 0;
    /// Ticks of 100 ns since 1601. Gives the system's error code, 0 when there is none.
    virtual unsigned long toFileTime(const DateTime::Parts& time, std::uint64_t& fileTime) = 0;
};

/// The system's own. Operations throw Win32Exception on a computer without COM's libraries.
class AutomaticUpdatesDriver : public IAutomaticUpdatesDriver {
public:
    std::int32_t create(std::unique_ptr<IAutomaticUpdates>& updates) override;
    std::optional<DateTime::Parts> toSystemTime(double date) override;
    unsigned long toFileTime(const DateTime::Parts& time, std::uint64_t& fileTime) override;
};

} // namespace vx::tarn::common
