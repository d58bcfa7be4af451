#include "priveleges/privilegesgrantscopeimpl.h"

#include "vxtl/guarded.h"

namespace vx::priveleges {

using logging::Level;
using logging::LogStream;

PrivilegesGrantScopeImpl::PrivilegesGrantScopeImpl(std::shared_ptr<IPrivelegesHolder> holder)
    : m_holder(std::move(holder))
{}

PrivilegesGrantScopeImpl::~PrivilegesGrantScopeImpl()
{
    // One that can't be taken back must not keep the others.
    for (const std::wstring& name : m_granted)
        guarded([&] { m_holder->removePrivilege(name); });
}

bool PrivilegesGrantScopeImpl::grant(const std::wstring& name)
{
    VX_LOG_SCOPE();
    if (m_holder->hasPrivilege(name)) {
        LogStream(Level::Info) << "Already has a privilege: " << name;
        return true;
    }
    if (!m_holder->addPrivilege(name))
        return false;
    m_granted.push_back(name);
    return true;
}

} // namespace vx::priveleges
