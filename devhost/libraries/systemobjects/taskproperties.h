#pragma once

#include "libraries/systemobjects/comobject.h"
#include "libraries/systemobjects/properties.h"

namespace devhost::systemobjects {

/// Who made a task, and what for.
class RegistrationInfo : public DispatchObject<IRegistrationInfo> {
public:
    explicit RegistrationInfo(const Values& values) : m_values("IRegistrationInfo", values) {}

    STDMETHODIMP get_Description(BSTR* value) override { return m_values.getText("Description", value); }
    STDMETHODIMP put_Description(BSTR value) override { return m_values.putText("Description", value); }
    STDMETHODIMP get_Author(BSTR* value) override { return m_values.getText("Author", value); }
    STDMETHODIMP put_Author(BSTR value) override { return m_values.putText("Author", value); }
    STDMETHODIMP get_Version(BSTR* value) override { return m_values.getText("Version", value); }
    STDMETHODIMP put_Version(BSTR value) override { return m_values.putText("Version", value); }
    STDMETHODIMP get_Date(BSTR* value) override { return m_values.getText("Date", value); }
    STDMETHODIMP put_Date(BSTR value) override { return m_values.putText("Date", value); }
    STDMETHODIMP get_Documentation(BSTR* value) override { return m_values.getText("Documentation", value); }
    STDMETHODIMP put_Documentation(BSTR value) override { return m_values.putText("Documentation", value); }
    STDMETHODIMP get_XmlText(BSTR*) override { return E_NOTIMPL; }
    STDMETHODIMP put_XmlText(BSTR) override { return E_NOTIMPL; }
    STDMETHODIMP get_URI(BSTR* value) override { return m_values.getText("URI", value); }
    STDMETHODIMP put_URI(BSTR value) override { return m_values.putText("URI", value); }
    STDMETHODIMP get_SecurityDescriptor(VARIANT*) override { return E_NOTIMPL; }
    STDMETHODIMP put_SecurityDescriptor(VARIANT) override { return E_NOTIMPL; }
    STDMETHODIMP get_Source(BSTR* value) override { return m_values.getText("Source", value); }
    STDMETHODIMP put_Source(BSTR value) override { return m_values.putText("Source", value); }

private:
    Properties m_values;
};

/// As whom a task runs.
class Principal : public DispatchObject<IPrincipal> {
public:
    explicit Principal(const Values& values) : m_values("IPrincipal", values) {}

    STDMETHODIMP get_Id(BSTR* value) override { return m_values.getText("Id", value); }
    STDMETHODIMP put_Id(BSTR value) override { return m_values.putText("Id", value); }
    STDMETHODIMP get_DisplayName(BSTR* value) override { return m_values.getText("DisplayName", value); }
    STDMETHODIMP put_DisplayName(BSTR value) override { return m_values.putText("DisplayName", value); }
    STDMETHODIMP get_UserId(BSTR* value) override { return m_values.getText("UserId", value); }
    STDMETHODIMP put_UserId(BSTR value) override { return m_values.putText("UserId", value); }
    STDMETHODIMP get_LogonType(TASK_LOGON_TYPE* value) override { return m_values.getNumber("LogonType", value); }
    STDMETHODIMP put_LogonType(TASK_LOGON_TYPE value) override
    {
        return m_values.putNumber("LogonType", value, {TASK_LOGON_NONE, TASK_LOGON_INTERACTIVE_TOKEN_OR_PASSWORD});
    }
    STDMETHODIMP get_GroupId(BSTR* value) override { return m_values.getText("GroupId", value); }
    STDMETHODIMP put_GroupId(BSTR value) override { return m_values.putText("GroupId", value); }
    STDMETHODIMP get_RunLevel(TASK_RUNLEVEL_TYPE* value) override { return m_values.getNumber("RunLevel", value); }
    STDMETHODIMP put_RunLevel(TASK_RUNLEVEL_TYPE value) override
    {
        return m_values.putNumber("RunLevel", value, {0, 1});
    }

private:
    Properties m_values;
};

/// Under which conditions a task runs.
class TaskSettings : public DispatchObject<ITaskSettings> {
public:
    explicit TaskSettings(const Values& values) : m_values("ITaskSettings", values) {}

    STDMETHODIMP get_AllowDemandStart(VARIANT_BOOL* value) override
    {
        return m_values.getFlag("AllowDemandStart", value);
    }
    STDMETHODIMP put_AllowDemandStart(VARIANT_BOOL value) override
    {
        return m_values.putFlag("AllowDemandStart", value);
    }
    STDMETHODIMP get_RestartInterval(BSTR* value) override { return m_values.getText("RestartInterval", value); }
    STDMETHODIMP put_RestartInterval(BSTR value) override { return m_values.putText("RestartInterval", value); }
    STDMETHODIMP get_RestartCount(INT* value) override { return m_values.getNumber("RestartCount", value); }
    STDMETHODIMP put_RestartCount(INT value) override { return m_values.putNumber("RestartCount", value, {0, 999}); }
    STDMETHODIMP get_MultipleInstances(TASK_INSTANCES_POLICY* value) override
    {
        return m_values.getNumber("MultipleInstances", value);
    }
    STDMETHODIMP put_MultipleInstances(TASK_INSTANCES_POLICY value) override
    {
        return m_values.putNumber("MultipleInstances", value, {TASK_INSTANCES_PARALLEL, TASK_INSTANCES_STOP_EXISTING});
    }
    STDMETHODIMP get_StopIfGoingOnBatteries(VARIANT_BOOL* value) override
    {
        return m_values.getFlag("StopIfGoingOnBatteries", value);
    }
    STDMETHODIMP put_StopIfGoingOnBatteries(VARIANT_BOOL value) override
    {
        return m_values.putFlag("StopIfGoingOnBatteries", value);
    }
    STDMETHODIMP get_DisallowStartIfOnBatteries(VARIANT_BOOL* value) override
    {
        return m_values.getFlag("DisallowStartIfOnBatteries", value);
    }
    STDMETHODIMP put_DisallowStartIfOnBatteries(VARIANT_BOOL value) override
    {
        return m_values.putFlag("DisallowStartIfOnBatteries", value);
    }
    STDMETHODIMP get_AllowHardTerminate(VARIANT_BOOL* value) override
    {
        return m_values.getFlag("AllowHardTerminate", value);
    }
    STDMETHODIMP put_AllowHardTerminate(VARIANT_BOOL value) override
    {
        return m_values.putFlag("AllowHardTerminate", value);
    }
    STDMETHODIMP get_StartWhenAvailable(VARIANT_BOOL* value) override
    {
        return m_values.getFlag("StartWhenAvailable", value);
    }
    STDMETHODIMP put_StartWhenAvailable(VARIANT_BOOL value) override
    {
        return m_values.putFlag("StartWhenAvailable", value);
    }
    STDMETHODIMP get_XmlText(BSTR*) override { return E_NOTIMPL; }
    STDMETHODIMP put_XmlText(BSTR) override { return E_NOTIMPL; }
    STDMETHODIMP get_RunOnlyIfNetworkAvailable(VARIANT_BOOL* value) override
    {
        return m_values.getFlag("RunOnlyIfNetworkAvailable", value);
    }
    STDMETHODIMP put_RunOnlyIfNetworkAvailable(VARIANT_BOOL value) override
    {
        return m_values.putFlag("RunOnlyIfNetworkAvailable", value);
    }
    STDMETHODIMP get_ExecutionTimeLimit(BSTR* value) override { return m_values.getText("ExecutionTimeLimit", value); }
    STDMETHODIMP put_ExecutionTimeLimit(BSTR value) override { return m_values.putText("ExecutionTimeLimit", value); }
    STDMETHODIMP get_Enabled(VARIANT_BOOL* value) override { return m_values.getFlag("Enabled", value); }
    STDMETHODIMP put_Enabled(VARIANT_BOOL value) override { return m_values.putFlag("Enabled", value); }
    STDMETHODIMP get_DeleteExpiredTaskAfter(BSTR* value) override
    {
        return m_values.getText("DeleteExpiredTaskAfter", value);
    }
    STDMETHODIMP put_DeleteExpiredTaskAfter(BSTR value) override
    {
        return m_values.putText("DeleteExpiredTaskAfter", value);
    }
    STDMETHODIMP get_Priority(INT* value) override { return m_values.getNumber("Priority", value); }
    STDMETHODIMP put_Priority(INT value) override { return m_values.putNumber("Priority", value, {0, 10}); }
    STDMETHODIMP get_Compatibility(TASK_COMPATIBILITY* value) override
    {
        return m_values.getNumber("Compatibility", value);
    }
    STDMETHODIMP put_Compatibility(TASK_COMPATIBILITY value) override
    {
        return m_values.putNumber("Compatibility", value, {0, 6});
    }
    STDMETHODIMP get_Hidden(VARIANT_BOOL* value) override { return m_values.getFlag("Hidden", value); }
    STDMETHODIMP put_Hidden(VARIANT_BOOL value) override { return m_values.putFlag("Hidden", value); }
    STDMETHODIMP get_IdleSettings(IIdleSettings**) override { return E_NOTIMPL; }
    STDMETHODIMP put_IdleSettings(IIdleSettings*) override { return E_NOTIMPL; }
    STDMETHODIMP get_RunOnlyIfIdle(VARIANT_BOOL* value) override { return m_values.getFlag("RunOnlyIfIdle", value); }
    STDMETHODIMP put_RunOnlyIfIdle(VARIANT_BOOL value) override { return m_values.putFlag("RunOnlyIfIdle", value); }
    STDMETHODIMP get_WakeToRun(VARIANT_BOOL* value) override { return m_values.getFlag("WakeToRun", value); }
    STDMETHODIMP put_WakeToRun(VARIANT_BOOL value) override { return m_values.putFlag("WakeToRun", value); }
    STDMETHODIMP get_NetworkSettings(INetworkSettings**) override { return E_NOTIMPL; }
    STDMETHODIMP put_NetworkSettings(INetworkSettings*) override { return E_NOTIMPL; }

private:
    Properties m_values;
};

} // namespace devhost::systemobjects
