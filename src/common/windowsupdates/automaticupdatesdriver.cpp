#include "common/windowsupdates/automaticupdatesdriver.h"

#include "common/windowsupdates/comobject.h"
#include "vxtl-com/automaticupdates2.h"
#include "vxtl/comexception.h"
#include "vxtl/scopeexit.h"

#include <oleauto.h>

#include <cmath>
#include <limits>

namespace vx::tarn::common {

namespace {

constexpr CLSID CLSID_AutomaticUpdates = {0xBFE18E9C, 0x6D87, 0x4450, {0xB3, 0x7C, 0xE0, 0x2F, 0x0B, 0x37, 0x38, 0x03}};

class UpdateResults : public IUpdateResults {
public:
    explicit UpdateResults(com::ComPtr<com::IAutomaticUpdatesResults> results) : m_results(std::move(results)) {}

    std::optional<double> getLastInstallationSuccessDate() override
    {
        VARIANT date;
        VariantInit(&date);
        const ScopeExit clear([&] { VariantClear(&date); });
        const HRESULT result = m_results->get_LastInstallationSuccessDate(&date);
        if (FAILED(result))
            VX_THROW_COM(comErrorOf(result, *m_results, __uuidof(com::IAutomaticUpdatesResults)),
                L"get_LastInstallationSuccessDate failed");
        if (V_VT(&date) == VT_EMPTY)
            return std::nullopt;
        return V_VT(&date) == VT_DATE ? V_DATE(&date) : std::numeric_limits<double>::quiet_NaN();
    }

private:
    com::ComPtr<com::IAutomaticUpdatesResults> m_results;
};

class AutomaticUpdates : public IAutomaticUpdates {
public:
    explicit AutomaticUpdates(com::ComPtr<com::IAutomaticUpdates2> updates) : m_updates(std::move(updates)) {}

    std::unique_ptr<IUpdateResults> getResults() override
    {
        com::ComPtr<com::IAutomaticUpdatesResults> native;
        const HRESULT result = m_updates->get_Results(native.put());
        if (FAILED(result))
            VX_THROW_COM(comErrorOf(result, *m_updates, __uuidof(com::IAutomaticUpdates2)), L"get_Results failed");
        return native ? std::make_unique<UpdateResults>(std::move(native)) : nullptr;
    }

private:
    com::ComPtr<com::IAutomaticUpdates2> m_updates;
};

} // namespace

std::int32_t AutomaticUpdatesDriver::create(std::unique_ptr<IAutomaticUpdates>& updates)
{
    updates.reset();
    com::ComPtr<com::IAutomaticUpdates2> native;
    const HRESULT result = createComObject(CLSID_AutomaticUpdates, __uuidof(com::IAutomaticUpdates2), native);
    if (native)
        updates = std::make_unique<AutomaticUpdates>(std::move(native));
    return result;
}

std::optional<DateTime::Parts> AutomaticUpdatesDriver::toSystemTime(double date)
{
    SYSTEMTIME t;
    // The system's own check of the range lets what is no number pass.
    if (std::isnan(date) || !VariantTimeToSystemTime(date, &t))
        return std::nullopt;
    return DateTime::Parts{t.wYear, t.wMonth, t.wDay, t.wHour, t.wMinute, t.wSecond, t.wMilliseconds};
}

unsigned long AutomaticUpdatesDriver::toFileTime(const DateTime::Parts& time, std::uint64_t& fileTime)
{
    const auto word = [](unsigned part) { return static_cast<WORD>(part); };
    const SYSTEMTIME system = {word(time.year), word(time.month), 0, word(time.day), word(time.hour), word(time.minute),
        word(time.second), word(time.millisecond)};
    FILETIME ticks;
    if (!SystemTimeToFileTime(&system, &ticks))
        return GetLastError();
    fileTime = std::uint64_t{ticks.dwHighDateTime} << 32 | ticks.dwLowDateTime;
    return ERROR_SUCCESS;
}

} // namespace vx::tarn::common
