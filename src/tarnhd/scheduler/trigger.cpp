#include "tarnhd/scheduler/trigger.h"

#include "common/utils/localtime.h"
#include "vxtl-com/bstr.h"
#include "vxtl-com/succeeded.h"
#include "vxtl-com/weeklytrigger.h"

#include <cstdio>
#include <numeric>

namespace vx::scheduler {

using com::Bstr;
using com::ComPtr;
using com::IWeeklyTrigger;
using com::succeeded;

namespace {

/// Empty where the system knows no local time; the Task Scheduler refuses that.
std::wstring boundaryText(Ticks boundary)
{
    const auto time = tarn::common::utils::toLocalTime(boundary / ticksPerSecond);
    if (!time)
        return {};
    char text[80];
    const int length = std::snprintf(text, sizeof(text), "%04u-%02u-%02uT%02u:%02u:%02u", time->year, time->month,
        time->day, time->hour, time->minute, time->second);
    return std::wstring(text, text + length);
}

bool putEndBoundary(ITrigger& trigger, const Trigger& values)
{
    if (values.isEndless())
        return true;
    return succeeded(trigger.put_EndBoundary(Bstr(boundaryText(values.getEndBoundary())).get()),
        "Failed to put end boundary. HRESULT = ");
}

/// What all kinds have in common. None after a failure.
template <typename Interface>
ComPtr<Interface> addTo(ITriggerCollection& collection, const std::wstring& id, const Trigger& values)
{
    ComPtr<ITrigger> trigger;
    ComPtr<Interface> result;
    if (succeeded(collection.Create(static_cast<TASK_TRIGGER_TYPE2>(values.getType()), trigger.put()),
            "Failed to create trigger. HRESULT = ") &&
        succeeded(trigger->QueryInterface(result.put()), "Failed to query trigger interface. HRESULT = ") &&
        succeeded(result->put_Id(Bstr(id).get()), "Failed to put trigger ID. HRESULT = ") &&
        succeeded(result->put_StartBoundary(Bstr(boundaryText(values.getStartBoundary())).get()),
            "Failed to put start boundary. HRESULT = ") &&
        putEndBoundary(*result, values))
        return result;
    return {};
}

} // namespace

Trigger::Trigger(TriggerType type, Ticks startBoundary, Ticks endBoundary)
    : m_type(type), m_startBoundary(startBoundary), m_endBoundary(endBoundary)
{}

Trigger::~Trigger() = default;

TriggerType Trigger::getType() const
{
    return m_type;
}

Ticks Trigger::getStartBoundary() const
{
    return m_startBoundary;
}

void Trigger::setStartBoundary(Ticks boundary)
{
    m_startBoundary = boundary;
}

Ticks Trigger::getEndBoundary() const
{
    return m_endBoundary;
}

void Trigger::setEndBoundary(Ticks boundary)
{
    m_endBoundary = boundary;
    if (boundary == noEnd)
        m_endless = true;
}

bool Trigger::isEndless() const
{
    return m_endless;
}

void Trigger::setEndless(bool endless)
{
    m_endless = endless;
}

DailyTrigger::DailyTrigger(Ticks startBoundary, Ticks endBoundary)
    : Trigger(TriggerType::Daily, startBoundary, endBoundary)
{}

ComPtr<ITrigger> DailyTrigger::create(ITriggerCollection& collection, const std::wstring& id) const
{
    const auto trigger = addTo<IDailyTrigger>(collection, id, *this);
    if (!trigger)
        return {};
    const auto days = static_cast<short>(m_daysInterval);
    if (days != 0 && !succeeded(trigger->put_DaysInterval(days), "Failed to put days interval. HRESULT = "))
        return {};
    return ComPtr<ITrigger>(trigger.get());
}

std::int32_t DailyTrigger::getDaysInterval() const
{
    return m_daysInterval;
}

void DailyTrigger::setDaysInterval(std::int32_t days)
{
    m_daysInterval = days;
}

WeeklyTrigger::WeeklyTrigger(Ticks startBoundary, Ticks endBoundary)
    : Trigger(TriggerType::Weekly, startBoundary, endBoundary)
{}

ComPtr<ITrigger> WeeklyTrigger::create(ITriggerCollection& collection, const std::wstring& id) const
{
    const auto trigger = addTo<IWeeklyTrigger>(collection, id, *this);
    if (!trigger)
        return {};
    const auto weeks = static_cast<short>(m_weeksInterval);
    // The log says days for the weeks, too.
    if (weeks != 0 && !succeeded(trigger->put_WeeksInterval(weeks), "Failed to put days interval. HRESULT = "))
        return {};
    const auto days = static_cast<short>(std::accumulate(m_daysOfWeek.begin(), m_daysOfWeek.end(), 0u));
    if (!succeeded(trigger->put_DaysOfWeek(days), "Failed to put days of week. HRESULT = "))
        return {};
    return ComPtr<ITrigger>(trigger.get());
}

std::int32_t WeeklyTrigger::getWeeksInterval() const
{
    return m_weeksInterval;
}

void WeeklyTrigger::setWeeksInterval(std::int32_t weeks)
{
    m_weeksInterval = weeks;
}

std::vector<std::int32_t> WeeklyTrigger::getDaysOfWeek() const
{
    return m_daysOfWeek;
}

void WeeklyTrigger::setDaysOfWeek(std::vector<std::int32_t> days)
{
    m_daysOfWeek = std::move(days);
}

} // namespace vx::scheduler
