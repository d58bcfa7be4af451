#pragma once

#include "libraries/systemobjects/comobject.h"

namespace devhost::systemobjects {

/// A connection with the scheduler, which is this machine's in the machine's file.
class TaskService : public DispatchObject<ITaskService> {
public:
    STDMETHODIMP GetFolder(BSTR path, ITaskFolder** folder) override;
    STDMETHODIMP GetRunningTasks(LONG, IRunningTaskCollection**) override { return E_NOTIMPL; }
    STDMETHODIMP NewTask(DWORD flags, ITaskDefinition** definition) override;
    /// Other machines and other users are not served.
    STDMETHODIMP Connect(VARIANT server, VARIANT user, VARIANT domain, VARIANT password) override;
    STDMETHODIMP get_Connected(VARIANT_BOOL* connected) override;
    STDMETHODIMP get_TargetServer(BSTR*) override { return E_NOTIMPL; }
    STDMETHODIMP get_ConnectedUser(BSTR*) override { return E_NOTIMPL; }
    STDMETHODIMP get_ConnectedDomain(BSTR*) override { return E_NOTIMPL; }
    STDMETHODIMP get_HighestVersion(DWORD*) override { return E_NOTIMPL; }

private:
    bool m_connected = false;
};

} // namespace devhost::systemobjects
