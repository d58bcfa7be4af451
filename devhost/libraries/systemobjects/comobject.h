#pragma once

#include "libraries/systemobjects/answer.h"
#include "libraries/systemobjects/interfacenames.h"

#include <atomic>

namespace devhost::systemobjects {

/// Objects of all kinds that somebody in this process still has a reference to.
inline std::atomic<long> livingObjects{0};

/// An object of one interface, which also answers for the interfaces that this one extends. Made with one reference;
/// the references and their end may be on any thread, the rest is for one thread at a time.
template <typename Interface, typename... Bases>
class ComObject : public Interface {
public:
    ComObject() { ++livingObjects; }
    virtual ~ComObject() { --livingObjects; }
    ComObject(const ComObject&) = delete;
    ComObject& operator=(const ComObject&) = delete;

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override
    {
        if (!object)
            return E_POINTER;
        *object = nullptr;
        // What OleRun asks for: servers like these have nothing to be set running.
        if (iid == __uuidof(IRunnableObject))
            return answer("IRunnableObject::QueryInterface", [] { return E_NOINTERFACE; });
        const bool isOwn = iid == __uuidof(Interface);
        if (!isOwn && iid != __uuidof(IUnknown) && !((iid == __uuidof(Bases)) || ...))
            return E_NOINTERFACE;
        const auto hand = [&] {
            AddRef();
            *object = static_cast<Interface*>(this);
            return S_OK;
        };
        return isOwn ? answer(std::string(nameOf<Interface>) + "::QueryInterface", hand) : hand();
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++m_references; }
    STDMETHODIMP_(ULONG) Release() override
    {
        const auto left = --m_references;
        if (left == 0)
            delete this;
        return left;
    }

private:
    std::atomic<ULONG> m_references{1};
};

/// The same for interfaces that scripts may call, which this one does not serve.
template <typename Interface, typename... Bases>
class DispatchObject : public ComObject<Interface, IDispatch, Bases...> {
public:
    STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override
    {
        return E_NOTIMPL;
    }
};

} // namespace devhost::systemobjects
