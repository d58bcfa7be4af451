#include "libraries/systemobjects/triggers.h"

#include <limits>

namespace devhost::systemobjects {

namespace {

// What a definition may say is looked at when it is registered.
constexpr Properties::Range anyShort{std::numeric_limits<short>::min(), std::numeric_limits<short>::max()};

/// What all kinds of triggers have.
template <typename Interface>
class Trigger : public DispatchObject<Interface, ITrigger> {
public:
    explicit Trigger(const Values& values) : m_own(nameOf<Interface>, values), m_common("ITrigger", values) {}

    STDMETHODIMP get_Type(TASK_TRIGGER_TYPE2* type) override { return m_common.getNumber("Type", type); }
    STDMETHODIMP get_Id(BSTR* id) override { return m_common.getText("Id", id); }
    STDMETHODIMP put_Id(BSTR id) override { return m_common.putText("Id", id); }
    STDMETHODIMP get_Repetition(IRepetitionPattern**) override { return E_NOTIMPL; }
    STDMETHODIMP put_Repetition(IRepetitionPattern*) override { return E_NOTIMPL; }
    STDMETHODIMP get_ExecutionTimeLimit(BSTR* limit) override { return m_common.getText("ExecutionTimeLimit", limit); }
    STDMETHODIMP put_ExecutionTimeLimit(BSTR limit) override { return m_common.putText("ExecutionTimeLimit", limit); }
    STDMETHODIMP get_StartBoundary(BSTR* start) override { return m_common.getText("StartBoundary", start); }
    STDMETHODIMP put_StartBoundary(BSTR start) override { return m_common.putText("StartBoundary", start); }
    STDMETHODIMP get_EndBoundary(BSTR* end) override { return m_common.getText("EndBoundary", end); }
    STDMETHODIMP put_EndBoundary(BSTR end) override { return m_common.putText("EndBoundary", end); }
    STDMETHODIMP get_Enabled(VARIANT_BOOL* enabled) override { return m_common.getFlag("Enabled", enabled); }
    STDMETHODIMP put_Enabled(VARIANT_BOOL enabled) override { return m_common.putFlag("Enabled", enabled); }
    STDMETHODIMP get_RandomDelay(BSTR* delay) override { return m_own.getText("RandomDelay", delay); }
    STDMETHODIMP put_RandomDelay(BSTR delay) override { return m_own.putText("RandomDelay", delay); }

protected:
    const Properties m_own;

private:
    const Properties m_common;
};

class DailyTrigger : public Trigger<IDailyTrigger> {
public:
    using Trigger::Trigger;

    STDMETHODIMP get_DaysInterval(short* days) override { return m_own.getNumber("DaysInterval", days); }
    STDMETHODIMP put_DaysInterval(short days) override { return m_own.putNumber("DaysInterval", days, anyShort); }
};

class WeeklyTrigger : public Trigger<vx::com::IWeeklyTrigger> {
public:
    using Trigger::Trigger;

    STDMETHODIMP get_DaysOfWeek(short* days) override { return m_own.getNumber("DaysOfWeek", days); }
    STDMETHODIMP put_DaysOfWeek(short days) override { return m_own.putNumber("DaysOfWeek", days, anyShort); }
    STDMETHODIMP get_WeeksInterval(short* weeks) override { return m_own.getNumber("WeeksInterval", weeks); }
    STDMETHODIMP put_WeeksInterval(short weeks) override { return m_own.putNumber("WeeksInterval", weeks, anyShort); }
};

std::optional<nlohmann::json> freshTrigger(TASK_TRIGGER_TYPE2 type)
{
    nlohmann::json fresh{{"Type", type}, {"Enabled", true}};
    switch (type) {
    case TASK_TRIGGER_DAILY: fresh["DaysInterval"] = 1; return fresh;
    case TASK_TRIGGER_WEEKLY: fresh["WeeksInterval"] = 1; return fresh;
    default: return std::nullopt;
    }
}

ITrigger* objectFor(const Values& values)
{
    if (values->at("Type") == TASK_TRIGGER_DAILY)
        return new DailyTrigger(values);
    return new WeeklyTrigger(values);
}

} // namespace

HRESULT TriggerCollection::get_Item(LONG index, ITrigger** trigger)
{
    return item(index, trigger, objectFor);
}

HRESULT TriggerCollection::Create(TASK_TRIGGER_TYPE2 type, ITrigger** trigger)
{
    return create(freshTrigger(type), trigger, objectFor);
}

} // namespace devhost::systemobjects
