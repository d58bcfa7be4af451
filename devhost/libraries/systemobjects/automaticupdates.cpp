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

HRESULT putDate(const std::string& text, VARIANT* date)
{
    const auto moment = machine::parseBoundary(text);
    if (!moment)
        return text.empty() ? S_OK : E_UNEXPECTED;
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
