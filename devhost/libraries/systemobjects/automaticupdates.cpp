#include "libraries/systemobjects/automaticupdates.h"

#include "machine/boundary.h"
#include "machine/machinefile.h"

namespace devhost::systemobjects {

namespace {

/// Days since the variants' epoch, the end of 1899.
DATE toDate(machine::Moment moment)
{
    using namespace std::chrono;
    constexpr auto epoch = local_days(year(1899) / December / 30);
    return duration<DATE, days::period>(moment - epoch).count();
}

/// A text that is no moment gives a value that is none, which callers may meet as well.
HRESULT putDate(const std::string& text, VARIANT* date)
{
    const auto moment = machine::parseBoundary(text);
    if (!moment) {
        V_VT(date) = text.empty() ? VT_EMPTY : VT_NULL;
        return S_OK;
    }
    V_VT(date) = VT_DATE;
    V_DATE(date) = toDate(*moment);
    return S_OK;
}

/// Updates are looked for when they are installed.
class AutomaticUpdatesResults : public DispatchObject<vx::com::IAutomaticUpdatesResults> {
public:
    STDMETHODIMP get_LastSearchSuccessDate(VARIANT* date) override
    {
        return answer("IAutomaticUpdatesResults::get_LastSearchSuccessDate", date,
            [&] { return putDate(machine::readState().lastInstallation, date); });
    }
    STDMETHODIMP get_LastInstallationSuccessDate(VARIANT* date) override
    {
        return answer("IAutomaticUpdatesResults::get_LastInstallationSuccessDate", date,
            [&] { return putDate(machine::readState().lastInstallation, date); });
    }
};

} // namespace

HRESULT AutomaticUpdates::get_ServiceEnabled(VARIANT_BOOL* enabled)
{
    return answer("IAutomaticUpdates::get_ServiceEnabled", enabled, [&] {
        *enabled = VARIANT_TRUE;
        return S_OK;
    });
}

HRESULT AutomaticUpdates::get_Results(vx::com::IAutomaticUpdatesResults** results)
{
    return give<AutomaticUpdatesResults>("IAutomaticUpdates2::get_Results", results);
}

} // namespace devhost::systemobjects
