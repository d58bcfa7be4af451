#pragma once

#include "vxtl-com/comptr.h"
#include "vxtl/clock.h"

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

struct ITrigger;
struct ITriggerCollection;

namespace vx::scheduler {

/// The Task Scheduler's numbers.
enum class TriggerType : std::int32_t { Daily = 2, Weekly = 3 };

/// As an end boundary: there is no end.
inline constexpr Ticks noEnd = std::numeric_limits<Ticks>::min();

/// When a task starts: values, which `create` turns into a trigger of the Task Scheduler. Boundaries are times since
/// the Unix epoch; they are written as local time, without fractions of a second. One thread at a time.
class Trigger {
public:
    Trigger(const Trigger&) = delete;
    Trigger& operator=(const Trigger&) = delete;
    virtual ~Trigger();

    virtual TriggerType getType() const;
    virtual Ticks getStartBoundary() const;
    virtual void setStartBoundary(Ticks boundary);
    virtual Ticks getEndBoundary() const;
    /// `noEnd` also makes the trigger endless.
    virtual void setEndBoundary(Ticks boundary);
    /// An endless trigger writes no end boundary, whatever that is.
    virtual bool isEndless() const;
    virtual void setEndless(bool endless);
    /// Adds itself to the collection. None after a failure, which is logged. Throws ComException for lack of memory.
    virtual com::ComPtr<ITrigger> create(ITriggerCollection& collection, const std::wstring& id) const = 0;

protected:
    Trigger(TriggerType type, Ticks startBoundary, Ticks endBoundary);

private:
    TriggerType m_type;
    Ticks m_startBoundary;
    Ticks m_endBoundary;
    bool m_endless = false;
};

/// Every so many days; an interval of 0 leaves it to the Task Scheduler.
class DailyTrigger : public Trigger {
public:
    DailyTrigger(Ticks startBoundary, Ticks endBoundary);

    com::ComPtr<ITrigger> create(ITriggerCollection& collection, const std::wstring& id) const override;
    virtual std::int32_t getDaysInterval() const;
    virtual void setDaysInterval(std::int32_t days);

private:
    std::int32_t m_daysInterval = 0;
};

/// On days of every so many weeks; an interval of 0 leaves it to the Task Scheduler.
class WeeklyTrigger : public Trigger {
public:
    WeeklyTrigger(Ticks startBoundary, Ticks endBoundary);

    com::ComPtr<ITrigger> create(ITriggerCollection& collection, const std::wstring& id) const override;
    virtual std::int32_t getWeeksInterval() const;
    virtual void setWeeksInterval(std::int32_t weeks);
    virtual std::vector<std::int32_t> getDaysOfWeek() const;
    /// One bit for each day, Sunday's is 1.
    virtual void setDaysOfWeek(std::vector<std::int32_t> days);

private:
    std::int32_t m_weeksInterval = 0;
    std::vector<std::int32_t> m_daysOfWeek;
};

} // namespace vx::scheduler
