#pragma once

#include "libraries/systemobjects/comobject.h"

#include <optional>

namespace devhost::systemobjects {

/// The local machine's group policy object: a save is kept, and has no other effect.
class GroupPolicyObject : public ComObject<IGroupPolicyObject> {
public:
    STDMETHODIMP New(LPOLESTR, LPOLESTR, DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP OpenDSGPO(LPOLESTR, DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP OpenLocalMachineGPO(DWORD flags) override;
    STDMETHODIMP OpenRemoteMachineGPO(LPOLESTR, DWORD) override { return E_NOTIMPL; }
    /// E_INVALIDARG before it is opened; E_ACCESSDENIED when it was opened without the registry's settings, or to be
    /// read only.
    STDMETHODIMP Save(WINBOOL machine, WINBOOL add, GUID* extension, GUID* snapIn) override;
    STDMETHODIMP Delete() override { return E_NOTIMPL; }
    STDMETHODIMP GetName(LPOLESTR, int) override { return E_NOTIMPL; }
    STDMETHODIMP GetDisplayName(LPOLESTR, int) override { return E_NOTIMPL; }
    STDMETHODIMP SetDisplayName(LPOLESTR) override { return E_NOTIMPL; }
    STDMETHODIMP GetPath(LPOLESTR, int) override { return E_NOTIMPL; }
    STDMETHODIMP GetDSPath(DWORD, LPOLESTR, int) override { return E_NOTIMPL; }
    STDMETHODIMP GetFileSysPath(DWORD, LPOLESTR, int) override { return E_NOTIMPL; }
    STDMETHODIMP GetRegistryKey(DWORD, HKEY*) override { return E_NOTIMPL; }
    STDMETHODIMP GetOptions(DWORD*) override { return E_NOTIMPL; }
    STDMETHODIMP SetOptions(DWORD, DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP GetType(GROUP_POLICY_OBJECT_TYPE*) override { return E_NOTIMPL; }
    STDMETHODIMP GetMachineName(LPOLESTR, int) override { return E_NOTIMPL; }
    STDMETHODIMP GetPropertySheetPages(HPROPSHEETPAGE**, UINT*) override { return E_NOTIMPL; }

private:
    std::optional<DWORD> m_openedWith; ///< flags
};

} // namespace devhost::systemobjects
