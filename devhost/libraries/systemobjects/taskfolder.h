#pragma once

#include "libraries/systemobjects/comobject.h"

namespace devhost::systemobjects {

/// A folder of the scheduler, which need not be there any more. What callers name may lead through folders below.
class TaskFolder : public DispatchObject<ITaskFolder> {
public:
    explicit TaskFolder(std::string path) : m_path(std::move(path)) {}

    STDMETHODIMP get_Name(BSTR* name) override;
    STDMETHODIMP get_Path(BSTR* path) override;
    STDMETHODIMP GetFolder(BSTR path, ITaskFolder** folder) override;
    STDMETHODIMP GetFolders(LONG, ITaskFolderCollection**) override { return E_NOTIMPL; }
    /// Makes the folders above it too. Refused when a directory of that name is left over where the scheduler would
    /// keep one of these folders.
    STDMETHODIMP CreateFolder(BSTR name, VARIANT sddl, ITaskFolder** folder) override;
    STDMETHODIMP DeleteFolder(BSTR name, LONG flags) override;
    STDMETHODIMP GetTask(BSTR path, IRegisteredTask** task) override;
    STDMETHODIMP GetTasks(LONG flags, IRegisteredTaskCollection** tasks) override;
    STDMETHODIMP DeleteTask(BSTR name, LONG flags) override;
    STDMETHODIMP RegisterTask(BSTR, BSTR, LONG, VARIANT, VARIANT, TASK_LOGON_TYPE, VARIANT, IRegisteredTask**) override
    {
        return E_NOTIMPL;
    }
    /// The password is not kept.
    STDMETHODIMP RegisterTaskDefinition(BSTR path, ITaskDefinition* definition, LONG flags, VARIANT user,
        VARIANT password, TASK_LOGON_TYPE logon, VARIANT sddl, IRegisteredTask** task) override;
    STDMETHODIMP GetSecurityDescriptor(LONG, BSTR*) override { return E_NOTIMPL; }
    STDMETHODIMP SetSecurityDescriptor(BSTR, LONG) override { return E_NOTIMPL; }

private:
    std::string pathOf(BSTR name) const;

    const std::string m_path;
};

/// The folder of that path, or how the scheduler refuses it: a missing folder and one whose parent is missing differ.
HRESULT openFolder(const std::string& path, ITaskFolder** folder);

} // namespace devhost::systemobjects
