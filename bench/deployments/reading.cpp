#include "common/patches/patchrecords.h"
#include "inputs.h"
#include "rows.h"
#include "vxtl/str.h"

#include <map>
#include <nlohmann/json.hpp>

using nlohmann::json;
using vx::tarn::common::MissingUpdate;
using vx::tarn::common::PatchSpecifier;

namespace {

using Members = std::map<std::string, json>;

const json* find(const Members& members, const char* key)
{
    const auto found = members.find(key);
    return found == members.end() || found->second.is_null() ? nullptr : &found->second;
}

void read(const Members& members, const char* key, std::wstring& target)
{
    if (const json* value = find(members, key))
        target = vx::str::fromUtf8(value->get_ref<const std::string&>());
}

void read(const Members& members, const char* key, std::int64_t& target)
{
    if (const json* value = find(members, key))
        target = value->get<std::int64_t>();
}

void read(const Members& members, const char* key, std::vector<std::wstring>& target)
{
    const json* value = find(members, key);
    if (!value)
        return;
    target.reserve(value->size());
    for (const json& element : *value)
        target.push_back(vx::str::fromUtf8(element.get_ref<const std::string&>()));
}

void read(const Members& members, const char* key, PatchSpecifier& target)
{
    const json* value = find(members, key);
    if (!value)
        return;
    const auto inner = value->get<Members>();
    read(inner, "id", target.id);
    read(inner, "region", target.region);
}

MissingUpdate readCopied(const json& value)
{
    const auto members = value.get<Members>();
    MissingUpdate update;
    read(members, "patch_specifier", update.patchSpecifier);
    read(members, "update_id", update.updateId);
    read(members, "bulletin_id", update.bulletinId);
    read(members, "product_name", update.productName);
    read(members, "service_pack", update.servicePack);
    read(members, "update_name", update.updateName);
    read(members, "end_of_life", update.endOfLife);
    read(members, "severity", update.severity);
    read(members, "category", update.category);
    read(members, "vendor", update.vendor);
    read(members, "user_friendly_update_name", update.userFriendlyUpdateName);
    read(members, "cve_id", update.cveIds);
    read(members, "description_url", update.descriptionUrl);
    return update;
}

} // namespace

void compareReading(bench::Comparison& table)
{
    const json list = missingUpdates(10000);
    const auto floor = bench::perCall(1, [&list] {
        std::vector<MissingUpdate> updates;
        updates.reserve(list.size());
        for (const json& element : list)
            updates.push_back(readCopied(element));
        bench::keep(updates);
    });
    const auto ours = bench::perCall(1, [&list] { bench::keep(vx::tarn::common::listFromJson<MissingUpdate>(list)); });
    table.row("reading 10000 missing updates", floor, ours, bench::Reach::timeUpTo(0.45));
}
