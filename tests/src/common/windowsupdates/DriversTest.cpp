#include "common/windowsupdates/automaticupdatesdriver.h"
#include "common/windowsupdates/grouppolicydriver.h"
#include "support/logcapture.h"
#include "support/thrown.h"
#include "vxtl-com/automaticupdates2.h"
#include "vxtl-com/comptr.h"
#include "vxtl/clock.h"
#include "vxtl/comexception.h"
#include "vxtl/comutils.h"

#include <objbase.h>
#include <oleauto.h>
#include <prsht.h>

#include <gpedit.h>

#include <cmath>

// COM objects delete themselves; their destructor is nobody's to call.
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

using namespace vx;
namespace common = vx::tarn::common;
using testing::HasSubstr;

namespace {

constexpr CLSID automaticUpdatesClass = {0xBFE18E9C, 0x6D87, 0x4450, {0xB3, 0x7C, 0xE0, 0x2F, 0x0B, 0x37, 0x38, 0x03}};
constexpr CLSID policyClass = {0xEA502722, 0xA23D, 0x11D1, {0xA7, 0xD3, 0x00, 0x00, 0xF8, 0x75, 0x71, 0xE3}};

/// Counts its references; answers for IUnknown, one interface and the error objects of that one.
template <typename Interface>
struct Counted : Interface, ISupportErrorInfo {
    explicit Counted(const GUID& id) : interfaceId(id) {}
    HRESULT WINAPI QueryInterface(REFIID wanted, void** found) override
    {
        *found = nullptr;
        wasRun = wasRun || wanted == IID_IRunnableObject;
        if (wanted == __uuidof(ISupportErrorInfo))
            *found = static_cast<ISupportErrorInfo*>(this);
        else if (wanted == __uuidof(IUnknown) || wanted == interfaceId)
            *found = givesInterface || wanted != interfaceId ? static_cast<Interface*>(this) : nullptr;
        else
            return E_NOINTERFACE;
        references += *found ? 1 : 0;
        return S_OK;
    }
    ULONG WINAPI AddRef() override { return static_cast<ULONG>(++references); }
    ULONG WINAPI Release() override { return static_cast<ULONG>(--references); }
    HRESULT WINAPI InterfaceSupportsErrorInfo(REFIID asked) override
    {
        return asked == interfaceId && leavesErrors ? S_OK : S_FALSE;
    }
    const GUID interfaceId;
    bool givesInterface = true, leavesErrors = true, wasRun = false;
    int references = 0;
};

template <typename Interface>
struct Dispatch : Counted<Interface> {
    using Counted<Interface>::Counted;
    HRESULT WINAPI GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT WINAPI GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT WINAPI GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    HRESULT WINAPI Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override
    {
        return E_NOTIMPL;
    }
};

struct Results : Dispatch<com::IAutomaticUpdatesResults> {
    Results() : Dispatch(__uuidof(com::IAutomaticUpdatesResults)) {}
    HRESULT WINAPI get_LastSearchSuccessDate(VARIANT*) override { return E_NOTIMPL; }
    HRESULT WINAPI get_LastInstallationSuccessDate(VARIANT* date) override
    {
        V_VT(date) = type;
        V_DATE(date) = 2.5;
        return result;
    }
    VARTYPE type = VT_DATE;
    HRESULT result = S_OK;
};

struct Updates : Dispatch<com::IAutomaticUpdates2> {
    Updates() : Dispatch(__uuidof(com::IAutomaticUpdates2)) {}
    HRESULT WINAPI DetectNow() override { return E_NOTIMPL; }
    HRESULT WINAPI Pause() override { return E_NOTIMPL; }
    HRESULT WINAPI Resume() override { return E_NOTIMPL; }
    HRESULT WINAPI ShowSettingsDialog() override { return E_NOTIMPL; }
    HRESULT WINAPI get_Settings(IAutomaticUpdatesSettings**) override { return E_NOTIMPL; }
    HRESULT WINAPI get_ServiceEnabled(VARIANT_BOOL*) override { return E_NOTIMPL; }
    HRESULT WINAPI EnableService() override { return E_NOTIMPL; }
    HRESULT WINAPI get_Results(com::IAutomaticUpdatesResults** found) override
    {
        *found = hasResults ? &results : nullptr;
        results.references += hasResults ? 1 : 0;
        return result;
    }
    Results results;
    bool hasResults = true;
    HRESULT result = S_OK;
};

struct Policy : Counted<IGroupPolicyObject> {
    Policy() : Counted({0xEA502723, 0xA23D, 0x11D1, {0xA7, 0xD3, 0x00, 0x00, 0xF8, 0x75, 0x71, 0xE3}}) {}
    HRESULT WINAPI New(LPOLESTR, LPOLESTR, DWORD) override { return E_NOTIMPL; }
    HRESULT WINAPI OpenDSGPO(LPOLESTR, DWORD) override { return E_NOTIMPL; }
    HRESULT WINAPI OpenLocalMachineGPO(DWORD flags) override { return flags == 1 ? S_OK : E_INVALIDARG; }
    HRESULT WINAPI OpenRemoteMachineGPO(LPOLESTR, DWORD) override { return E_NOTIMPL; }
    HRESULT WINAPI Save(WINBOOL machine, WINBOOL add, GUID* extension, GUID* snapIn) override
    {
        return machine == TRUE && add == FALSE && extension->Data1 == 0x35378EAC && snapIn->Data4[7] == 0xE3
                   ? S_OK
                   : E_INVALIDARG;
    }
    HRESULT WINAPI Delete() override { return E_NOTIMPL; }
    HRESULT WINAPI GetName(LPOLESTR, int) override { return E_NOTIMPL; }
    HRESULT WINAPI GetDisplayName(LPOLESTR, int) override { return E_NOTIMPL; }
    HRESULT WINAPI SetDisplayName(LPOLESTR) override { return E_NOTIMPL; }
    HRESULT WINAPI GetPath(LPOLESTR, int) override { return E_NOTIMPL; }
    HRESULT WINAPI GetDSPath(DWORD, LPOLESTR, int) override { return E_NOTIMPL; }
    HRESULT WINAPI GetFileSysPath(DWORD, LPOLESTR, int) override { return E_NOTIMPL; }
    HRESULT WINAPI GetRegistryKey(DWORD, HKEY*) override { return E_NOTIMPL; }
    HRESULT WINAPI GetOptions(DWORD*) override { return E_NOTIMPL; }
    HRESULT WINAPI SetOptions(DWORD, DWORD) override { return E_NOTIMPL; }
    HRESULT WINAPI GetType(GROUP_POLICY_OBJECT_TYPE*) override { return E_NOTIMPL; }
    HRESULT WINAPI GetMachineName(LPOLESTR, int) override { return E_NOTIMPL; }
    HRESULT WINAPI GetPropertySheetPages(HPROPSHEETPAGE**, UINT*) override { return E_NOTIMPL; }
};

/// Registers an object as the one of a class for this process.
class ClassObject : public Counted<IClassFactory> {
public:
    template <typename Object>
    ClassObject(const CLSID& classId, Object& object)
        : Counted(__uuidof(IClassFactory)),
          m_create([&object](REFIID id, void** found) { return object.QueryInterface(id, found); })
    {
        EXPECT_EQ(CoRegisterClassObject(classId, static_cast<IClassFactory*>(this), CLSCTX_INPROC_SERVER,
                      REGCLS_MULTIPLEUSE, &m_registration),
            S_OK);
    }
    ~ClassObject() { CoRevokeClassObject(m_registration); }
    HRESULT WINAPI CreateInstance(IUnknown*, REFIID id, void** found) override { return m_create(id, found); }
    HRESULT WINAPI LockServer(BOOL) override { return S_OK; }

private:
    std::function<HRESULT(REFIID, void**)> m_create;
    DWORD m_registration = 0;
};

/// As a failing call does.
void leaveError(const wchar_t* source)
{
    com::ComPtr<ICreateErrorInfo> error;
    com::ComPtr<IErrorInfo> info;
    CreateErrorInfo(error.put());
    error->SetSource(const_cast<wchar_t*>(source));
    error->QueryInterface(__uuidof(IErrorInfo), reinterpret_cast<void**>(info.put()));
    SetErrorInfo(0, info.get());
}

class DriversTest : public testing::Test {
protected:
    comutils::ComApartment apartment;
    common::AutomaticUpdatesDriver driver;
};

} // namespace

TEST_F(DriversTest, automaticUpdatesGiveTheirDateAndAreReleased)
{
    Updates system;
    const ClassObject registration(automaticUpdatesClass, system);
    std::unique_ptr<common::IAutomaticUpdates> updates;
    ASSERT_EQ(driver.create(updates), S_OK);
    EXPECT_TRUE(system.wasRun);
    EXPECT_EQ(updates->getResults()->getLastInstallationSuccessDate(), 2.5);
    system.results.type = VT_EMPTY;
    EXPECT_EQ(updates->getResults()->getLastInstallationSuccessDate(), std::nullopt);
    system.results.type = VT_NULL;
    EXPECT_TRUE(std::isnan(updates->getResults()->getLastInstallationSuccessDate().value()));
    system.hasResults = false;
    EXPECT_EQ(updates->getResults(), nullptr);
    updates.reset();
    EXPECT_EQ(system.results.references, 0);
    EXPECT_EQ(system.references, 0);

    system.givesInterface = false;
    EXPECT_EQ(driver.create(updates), S_OK);
    EXPECT_EQ(updates, nullptr);
    EXPECT_EQ(system.references, 0);
}

TEST_F(DriversTest, failingCallsThrowWithTheErrorObjectOfTheCall)
{
    Updates system;
    const ClassObject registration(automaticUpdatesClass, system);
    std::unique_ptr<common::IAutomaticUpdates> updates;
    ASSERT_EQ(driver.create(updates), S_OK);
    const auto results = updates->getResults();
    const struct {
        const char* call;
        std::function<void()> operation;
        bool* leavesErrors;
    } rows[] = {{"get_Results failed", [&] { updates->getResults(); }, &system.leavesErrors},
        {"get_LastInstallationSuccessDate failed", [&] { results->getLastInstallationSuccessDate(); },
            &system.results.leavesErrors}};
    for (const auto& row : rows)
        for (const bool leaves : {true, false}) {
            SCOPED_TRACE(row.call);
            leaveError(L"the updates");
            *row.leavesErrors = leaves;
            system.result = system.results.result = E_ACCESSDENIED;
            const auto failure = support::thrown<ComException>(row.operation);
            EXPECT_EQ(failure.result(), E_ACCESSDENIED);
            EXPECT_EQ(std::string(failure.what()).ends_with("COM Source: the updates"), leaves) << failure.what();
            EXPECT_THAT(failure.what(), HasSubstr(row.call));
            *row.leavesErrors = true;
        }
}

TEST_F(DriversTest, datesOfTheSystem)
{
    const struct {
        const char* label;
        double date;
        bool isTime;
        unsigned long error;
        Ticks fileTime;
    } rows[] = {
        {"the Unix epoch and a half", 25569.5, true, 0, unixEpochAsFileTime + 12 * 3600 * ticksPerSecond},
        {"before file times", -200'000, true, ERROR_INVALID_PARAMETER, 7},
        {"out of range", 3e6, false, 0, 0},
        {"no number", std::nan(""), false, 0, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        const auto time = driver.toSystemTime(row.date);
        ASSERT_EQ(time.has_value(), row.isTime);
        std::uint64_t fileTime = 7;
        if (time) {
            EXPECT_EQ(driver.toFileTime(*time, fileTime), row.error);
            EXPECT_EQ(fileTime, static_cast<std::uint64_t>(row.fileTime));
        }
    }
}

TEST_F(DriversTest, policyObjectIsOpenedSavedAndReleased)
{
    common::GroupPolicyDriver policies;
    Policy system;
    const ClassObject registration(policyClass, system);
    std::unique_ptr<common::IPolicyObject> object;
    ASSERT_EQ(policies.create(object), S_OK);
    EXPECT_EQ(object->openLocalMachine(), S_OK);
    EXPECT_EQ(object->save(common::PolicySection::Machine, common::PolicyChange::Remove, common::registryExtension,
                  common::policySnapIn),
        S_OK);
    system.givesInterface = false;
    EXPECT_EQ(policies.create(object), E_NOINTERFACE);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(system.references, 0);
}
