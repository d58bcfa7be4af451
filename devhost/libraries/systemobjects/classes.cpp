#include "libraries/systemobjects/classes.h"

#include "libraries/systemobjects/automaticupdates.h"
#include "libraries/systemobjects/grouppolicyobject.h"
#include "libraries/systemobjects/guidtext.h"
#include "libraries/systemobjects/taskservice.h"
#include "vxtl/registry.h"

#include <algorithm>

namespace devhost::systemobjects {

template <>
inline constexpr const char* nameOf<IClassFactory> = "IClassFactory";

namespace {

/// A class of which the library makes objects.
struct ComClass {
    GUID id;
    const char* name;    ///< for planned failures: "NAME::CreateInstance"
    IUnknown* (*make)(); ///< an object with one reference
};

template <typename Object>
IUnknown* make()
{
    return new Object;
}

constexpr ComClass classes[] = {
    {{0x0f87369f, 0xa4e5, 0x4cfc, {0xbd, 0x3e, 0x73, 0xe6, 0x15, 0x45, 0x72, 0xdd}}, "TaskScheduler",
        make<TaskService>},
    {{0xbfe18e9c, 0x6d87, 0x4450, {0xb3, 0x7c, 0xe0, 0x2f, 0x0b, 0x37, 0x38, 0x03}}, "AutomaticUpdates",
        make<AutomaticUpdates>},
    {{0xea502722, 0xa23d, 0x11d1, {0xa7, 0xd3, 0x00, 0x00, 0xf8, 0x75, 0x71, 0xe3}}, "GroupPolicyObject",
        make<GroupPolicyObject>},
};

class ClassFactory : public ComObject<IClassFactory> {
public:
    explicit ClassFactory(const ComClass& comClass) : m_class(comClass) {}

    STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** object) override
    {
        return answer(std::string(m_class.name) + "::CreateInstance", object, [&] {
            if (outer)
                return CLASS_E_NOAGGREGATION;
            auto* made = m_class.make();
            const auto result = made->QueryInterface(iid, object);
            made->Release();
            return result;
        });
    }
    STDMETHODIMP LockServer(WINBOOL) override { return S_OK; }

private:
    const ComClass& m_class;
};

/// With more flags than that it is to be found by an address.
HMODULE ownModule(DWORD flags)
{
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | flags, reinterpret_cast<LPCWSTR>(&ownModule), &module);
    return module;
}

std::wstring modulePath()
{
    wchar_t path[MAX_PATH];
    const auto module = ownModule(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT);
    return {path, GetModuleFileNameW(module, path, MAX_PATH)};
}

} // namespace

HRESULT getClassObject(REFCLSID id, REFIID iid, void** object)
{
    const auto found = std::ranges::find_if(classes, [&](const ComClass& each) { return each.id == id; });
    if (found == std::end(classes))
        return CLASS_E_CLASSNOTAVAILABLE;
    // The end of an apartment unloads libraries without asking them.
    ownModule(GET_MODULE_HANDLE_EX_FLAG_PIN);
    auto* factory = new ClassFactory(*found);
    const auto result = factory->QueryInterface(iid, object);
    factory->Release();
    return result;
}

void registerClasses()
{
    const auto registry = vx::registry::createWin32Registry();
    for (const auto& comClass : classes) {
        const auto key = registry->createKey(
            L"HKEY_LOCAL_MACHINE\\Software\\Classes\\CLSID\\" + guidText(comClass.id) + L"\\InprocServer32");
        key->setStringValue(L"", modulePath());
        key->setStringValue(L"ThreadingModel", L"Both");
    }
}

} // namespace devhost::systemobjects
