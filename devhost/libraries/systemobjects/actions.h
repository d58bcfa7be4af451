#pragma once

#include "libraries/systemobjects/itemcollection.h"

namespace devhost::systemobjects {

/// The actions of a definition, which start programs.
class ActionCollection : public ItemCollection<IActionCollection> {
public:
    using ItemCollection::ItemCollection;

    STDMETHODIMP get_Item(LONG index, IAction** action) override;
    STDMETHODIMP get_XmlText(BSTR*) override { return E_NOTIMPL; }
    STDMETHODIMP put_XmlText(BSTR) override { return E_NOTIMPL; }
    STDMETHODIMP Create(TASK_ACTION_TYPE type, IAction** action) override;
    STDMETHODIMP get_Context(BSTR*) override { return E_NOTIMPL; }
    STDMETHODIMP put_Context(BSTR) override { return E_NOTIMPL; }
};

} // namespace devhost::systemobjects
