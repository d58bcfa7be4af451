#pragma once

#include <string_view>

namespace devhost::store {

/// Whether what a subscription names stands for many names: those that begin with what is before its
/// closing "*".
inline bool isPattern(std::string_view subscription) noexcept
{
    return subscription.ends_with('*');
}

/// Whether a subscription is meant for the value.
inline bool matches(std::string_view subscription, std::string_view name) noexcept
{
    return isPattern(subscription) ? name.starts_with(subscription.substr(0, subscription.size() - 1))
                                   : name == subscription;
}

} // namespace devhost::store
