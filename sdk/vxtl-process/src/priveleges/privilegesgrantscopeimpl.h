#pragma once

#include "priveleges/iprivelegesholder.h"
#include "priveleges/iprivilegesgrantscope.h"

#include <memory>
#include <vector>

namespace vx::priveleges {

/// Takes back exactly what it gave, in the order of giving: a right that the account had before stays.
class PrivilegesGrantScopeImpl : public IPrivilegesGrantScope {
public:
    explicit PrivilegesGrantScopeImpl(std::shared_ptr<IPrivelegesHolder> holder);
    ~PrivilegesGrantScopeImpl() override;
    PrivilegesGrantScopeImpl(const PrivilegesGrantScopeImpl&) = delete;
    PrivilegesGrantScopeImpl& operator=(const PrivilegesGrantScopeImpl&) = delete;

    bool grant(const std::wstring& name) override;

private:
    std::shared_ptr<IPrivelegesHolder> m_holder;
    std::vector<std::wstring> m_granted;
};

} // namespace vx::priveleges
