#pragma once

#include "libraries/systemobjects/comobject.h"

#include <vector>

namespace devhost::systemobjects {

/// A registered task as it is by now; it need not be there any more.
class RegisteredTask : public DispatchObject<IRegisteredTask> {
public:
    explicit RegisteredTask(std::string path) : m_path(std::move(path)) {}

    STDMETHODIMP get_Name(BSTR* name) override;
    STDMETHODIMP get_Path(BSTR* path) override;
    STDMETHODIMP get_State(TASK_STATE* state) override;
    STDMETHODIMP get_Enabled(VARIANT_BOOL* enabled) override;
    STDMETHODIMP put_Enabled(VARIANT_BOOL enabled) override;
    STDMETHODIMP Run(VARIANT, IRunningTask**) override { return E_NOTIMPL; }
    STDMETHODIMP RunEx(VARIANT, LONG, LONG, BSTR, IRunningTask**) override { return E_NOTIMPL; }
    STDMETHODIMP GetInstances(LONG, IRunningTaskCollection**) override { return E_NOTIMPL; }
    STDMETHODIMP get_LastRunTime(DATE*) override { return E_NOTIMPL; }
    STDMETHODIMP get_LastTaskResult(LONG*) override { return E_NOTIMPL; }
    STDMETHODIMP get_NumberOfMissedRuns(LONG*) override { return E_NOTIMPL; }
    STDMETHODIMP get_NextRunTime(DATE*) override { return E_NOTIMPL; }
    /// A copy: changes show when it is registered.
    STDMETHODIMP get_Definition(ITaskDefinition** definition) override;
    STDMETHODIMP get_Xml(BSTR*) override { return E_NOTIMPL; }
    STDMETHODIMP GetSecurityDescriptor(LONG, BSTR*) override { return E_NOTIMPL; }
    STDMETHODIMP SetSecurityDescriptor(BSTR, LONG) override { return E_NOTIMPL; }
    STDMETHODIMP Stop(LONG) override { return E_NOTIMPL; }
    STDMETHODIMP GetRunTimes(const LPSYSTEMTIME, const LPSYSTEMTIME, DWORD*, LPSYSTEMTIME*) override
    {
        return E_NOTIMPL;
    }

private:
    const std::string m_path;
};

/// The tasks of a folder as they were when they were asked for. They are counted from 1.
class RegisteredTaskCollection : public DispatchObject<IRegisteredTaskCollection> {
public:
    explicit RegisteredTaskCollection(std::vector<std::string> paths) : m_paths(std::move(paths)) {}

    STDMETHODIMP get_Count(LONG* count) override;
    STDMETHODIMP get_Item(VARIANT index, IRegisteredTask** task) override;
    STDMETHODIMP get__NewEnum(IUnknown**) override { return E_NOTIMPL; }

private:
    const std::vector<std::string> m_paths;
};

} // namespace devhost::systemobjects
