#pragma once

#include "vxtl/guarded.h"
#include "vxtl/registry.h"

#include <array>
#include <optional>
#include <vector>

namespace support {

/// The first values of a key, in the order of their reading; none: there is no key.
using Numbers = std::optional<std::vector<std::int32_t>>;
/// In place of a number: a text, which is not read back.
inline constexpr std::int32_t noNumber = -2;

/// Where the state of the automatic updates stands.
struct Place {
    const wchar_t* key;
    std::array<const wchar_t*, 4> names;
};
inline constexpr Place policyPlace = {L"HKEY_LOCAL_MACHINE\\Software\\Policies\\Microsoft\\Windows\\WindowsUpdate\\AU",
    {L"NoAutoUpdate", L"AUOptions", L"ScheduledInstallDay", L"ScheduledInstallTime"}};
inline constexpr Place savedPlace = {L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantorix\\tarn",
    {L"WUState", L"WUOptions", L"WUScheduledInstallDay", L"WUScheduledInstallTime"}};

/// What else the key holds stays as long as there are numbers.
inline void putNumbers(const Place& place, const Numbers& numbers)
{
    const auto registry = vx::registry::createWin32Registry();
    const auto key = registry->createKey(place.key);
    for (std::size_t i = 0; i < place.names.size(); ++i)
        if (!numbers || i >= numbers->size())
            vx::guarded(vx::logging::Level::Debug, [&] { key->deleteValue(place.names[i]); });
        else if ((*numbers)[i] == noNumber)
            key->setStringValue(place.names[i], L"4");
        else
            key->setInt32Value(place.names[i], (*numbers)[i]);
    if (!numbers)
        registry->deleteTree(place.key);
}

inline Numbers numbersOf(const Place& place)
{
    const auto registry = vx::registry::createWin32Registry();
    if (!registry->doesKeyExist(place.key))
        return {};
    const auto key = registry->openKey(place.key);
    std::vector<std::int32_t> result;
    for (const wchar_t* name : place.names)
        vx::guarded(vx::logging::Level::Debug, [&] { result.push_back(key->getInt32Value(name)); });
    return result;
}

} // namespace support
