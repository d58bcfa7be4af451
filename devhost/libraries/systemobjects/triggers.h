#pragma once

#include "libraries/systemobjects/itemcollection.h"

namespace devhost::systemobjects {

/// The triggers of a definition: daily and weekly ones.
class TriggerCollection : public ItemCollection<ITriggerCollection> {
public:
    using ItemCollection::ItemCollection;

    STDMETHODIMP get_Item(LONG index, ITrigger** trigger) override;
    STDMETHODIMP Create(TASK_TRIGGER_TYPE2 type, ITrigger** trigger) override;
};

} // namespace devhost::systemobjects
