#include "libraries/systemobjects/actions.h"

namespace devhost::systemobjects {

namespace {

class ExecAction : public DispatchObject<IExecAction, IAction> {
public:
    explicit ExecAction(const Values& values) : m_own("IExecAction", values), m_common("IAction", values) {}

    STDMETHODIMP get_Id(BSTR* id) override { return m_common.getText("Id", id); }
    STDMETHODIMP put_Id(BSTR id) override { return m_common.putText("Id", id); }
    STDMETHODIMP get_Type(TASK_ACTION_TYPE* type) override { return m_common.getNumber("Type", type); }
    STDMETHODIMP get_Path(BSTR* path) override { return m_own.getText("Path", path); }
    STDMETHODIMP put_Path(BSTR path) override { return m_own.putText("Path", path); }
    STDMETHODIMP get_Arguments(BSTR* arguments) override { return m_own.getText("Arguments", arguments); }
    STDMETHODIMP put_Arguments(BSTR arguments) override { return m_own.putText("Arguments", arguments); }
    STDMETHODIMP get_WorkingDirectory(BSTR* folder) override { return m_own.getText("WorkingDirectory", folder); }
    STDMETHODIMP put_WorkingDirectory(BSTR folder) override { return m_own.putText("WorkingDirectory", folder); }

private:
    const Properties m_own, m_common;
};

IAction* objectFor(const Values& values)
{
    return new ExecAction(values);
}

std::optional<nlohmann::json> freshAction(TASK_ACTION_TYPE type)
{
    return type == TASK_ACTION_EXEC ? std::optional(nlohmann::json{{"Type", type}}) : std::nullopt;
}

} // namespace

HRESULT ActionCollection::get_Item(LONG index, IAction** action)
{
    return item(index, action, objectFor);
}

HRESULT ActionCollection::Create(TASK_ACTION_TYPE type, IAction** action)
{
    return create(freshAction(type), action, objectFor);
}

} // namespace devhost::systemobjects
