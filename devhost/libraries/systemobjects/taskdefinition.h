#pragma once

#include "libraries/systemobjects/comobject.h"
#include "libraries/systemobjects/definitionparts.h"

namespace devhost::systemobjects {

/// A definition in the making, or a copy of a registered one.
class TaskDefinition : public DispatchObject<ITaskDefinition> {
public:
    explicit TaskDefinition(DefinitionParts parts) : m_parts(std::move(parts)) {}

    /// What the definition says by now; nothing for one that is not of this library.
    static std::optional<nlohmann::json> read(ITaskDefinition* definition);

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
    STDMETHODIMP get_RegistrationInfo(IRegistrationInfo** info) override;
    STDMETHODIMP put_RegistrationInfo(IRegistrationInfo*) override { return E_NOTIMPL; }
    STDMETHODIMP get_Triggers(ITriggerCollection** triggers) override;
    STDMETHODIMP put_Triggers(ITriggerCollection*) override { return E_NOTIMPL; }
    STDMETHODIMP get_Settings(ITaskSettings** settings) override;
    STDMETHODIMP put_Settings(ITaskSettings*) override { return E_NOTIMPL; }
    STDMETHODIMP get_Data(BSTR* data) override { return m_data.getText("Data", data); }
    STDMETHODIMP put_Data(BSTR data) override { return m_data.putText("Data", data); }
    STDMETHODIMP get_Principal(IPrincipal** principal) override;
    STDMETHODIMP put_Principal(IPrincipal*) override { return E_NOTIMPL; }
    STDMETHODIMP get_Actions(IActionCollection** actions) override;
    STDMETHODIMP put_Actions(IActionCollection*) override { return E_NOTIMPL; }
    STDMETHODIMP get_XmlText(BSTR*) override { return E_NOTIMPL; }
    STDMETHODIMP put_XmlText(BSTR) override { return E_NOTIMPL; }

private:
    DefinitionParts m_parts;
    Properties m_data{"ITaskDefinition", m_parts.data};
};

} // namespace devhost::systemobjects
