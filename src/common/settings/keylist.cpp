#include "common/settings/keylist.h"

#include "common/settings/hostsettings.h"
#include "common/settings/tarnpatchsettings.h"
#include "common/settings/tarnpatchstatus.h"

#include <algorithm>
#include <string_view>

namespace vx::tarn {

namespace {

struct Collected : KeyList {
    void add(const KeyInfo& key) override { keys.push_back(key); }
    std::vector<KeyInfo> keys;
};

} // namespace

std::vector<KeyInfo> listKeys()
{
    Collected rows;
    const TarnpatchSettings settings(rows);
    const TarnpatchStatus status(rows);
    const HostSettings host(rows);
    std::ranges::sort(rows.keys, {}, [](const KeyInfo& key) { return std::wstring_view(key.name); });
    return std::move(rows.keys);
}

} // namespace vx::tarn
