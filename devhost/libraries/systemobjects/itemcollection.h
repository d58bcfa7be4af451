#pragma once

#include "libraries/systemobjects/comobject.h"
#include "libraries/systemobjects/definitionparts.h"
#include "libraries/systemobjects/position.h"

namespace devhost::systemobjects {

/// What the two collections of a definition have in common. Callers count from 1.
template <typename Interface>
class ItemCollection : public DispatchObject<Interface> {
public:
    explicit ItemCollection(const ValuesList& items) : m_items(items) {}

    STDMETHODIMP get_Count(LONG* count) override
    {
        return answer(call("get_Count"), count, [&] {
            *count = static_cast<LONG>(m_items->size());
            return S_OK;
        });
    }
    STDMETHODIMP get__NewEnum(IUnknown**) override { return E_NOTIMPL; }
    STDMETHODIMP Remove(VARIANT index) override
    {
        return answer(call("Remove"), [&] {
            const auto position = positionOf(index, m_items->size());
            if (!position)
                return E_INVALIDARG;
            m_items->erase(m_items->begin() + static_cast<std::ptrdiff_t>(*position));
            return S_OK;
        });
    }
    STDMETHODIMP Clear() override
    {
        return answer(call("Clear"), [&] {
            m_items->clear();
            return S_OK;
        });
    }

protected:
    /// get_Item, for what `make` makes of an item's values.
    template <typename Item, typename Make>
    HRESULT item(LONG index, Item** result, Make make)
    {
        return answer(call("get_Item"), result, [&] {
            const auto position = positionOf(index, m_items->size());
            if (!position)
                return E_INVALIDARG;
            *result = make((*m_items)[*position]);
            return S_OK;
        });
    }
    /// Create, for a new item with these values; none for a kind that is not served.
    template <typename Item, typename Make>
    HRESULT create(const std::optional<nlohmann::json>& fresh, Item** result, Make make)
    {
        return answer(call("Create"), result, [&] {
            if (!fresh)
                return E_NOTIMPL;
            *result = make(m_items->emplace_back(std::make_shared<nlohmann::json>(*fresh)));
            return S_OK;
        });
    }

private:
    static std::string call(const char* method) { return std::string(nameOf<Interface>) + "::" + method; }

    const ValuesList m_items;
};

} // namespace devhost::systemobjects
