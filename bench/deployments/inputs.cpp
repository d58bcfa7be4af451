#include "inputs.h"

#include "common/patches/updateid.h"
#include "vxtl/str.h"

#include <cstdio>
#include <nlohmann/json.hpp>

using nlohmann::json;

namespace {

std::string number(std::size_t value)
{
    return std::to_string(100000 + value);
}

std::string guid(std::size_t i)
{
    char group[9];
    std::snprintf(group, sizeof group, "%08X", static_cast<unsigned>(i * 2654435761u));
    return group + std::string("-7D41-4B6E-9A10-A1B2C3") + number(i);
}

std::string updateId(std::size_t i)
{
    return vx::str::toUtf8(vx::tarn::common::deriveUpdateId(vx::str::fromUtf8("TB24-" + number(i)),
        L"Document Reader Professional", L"Gold", vx::str::fromUtf8("KB" + number(i) + " (64-bit)")));
}

json namesOf(std::size_t i)
{
    return {{"patch_specifier", {{"id", guid(i)}, {"region", i % 7}}}, {"update_id", updateId(i)},
        {"bulletin_id", "TB24-" + number(i)}, {"product_name", "Document Reader Professional"},
        {"service_pack", "Gold"}, {"update_name", "KB" + number(i) + " (64-bit)"}};
}

std::string listOf(const char* word, std::string (*element)(std::size_t), std::size_t first)
{
    std::string text = word;
    for (std::size_t i = 0; i < 20; ++i)
        text += (i ? "&" : "") + element(first + 37 * i);
    return text;
}

} // namespace

json missingUpdates(std::size_t count)
{
    json list = json::array();
    for (std::size_t i = 0; i < count; ++i) {
        json update = namesOf(i);
        update["end_of_life"] = "2029-10-14";
        update["severity"] = i % 5;
        update["category"] = i % 3;
        update["vendor"] = "Example Vendor Corporation";
        update["user_friendly_update_name"] = "Security update for Document Reader, number " + number(i);
        update["cve_id"] = {"CVE-2024-" + number(2 * i), "CVE-2024-" + number(2 * i + 1)};
        update["description_url"] = "https://updates.example.com/bulletins/TB24-" + number(i);
        list.push_back(std::move(update));
    }
    return list;
}

json logEntries(std::size_t count)
{
    const char* states[] = {"installation_completed", "installation_failed", "file_downloading",
        "installation_completed_pending_reboot", "installation_excluded"};
    json list = json::array();
    for (std::size_t i = 0; i < count; ++i) {
        json entry = namesOf(i % 2 ? i : 500000 + i);
        entry["installation_time"] = 1700000000 + i;
        entry["installation_result"] = "installation_success";
        entry["status"] = {{"value", states[i / 2 % 5]}, {"code", "0"}};
        list.push_back(std::move(entry));
    }
    return list;
}

json requests(std::size_t count)
{
    json list = json::array();
    if (count == 1)
        list.push_back({{"operation_id", "1700000000000"}, {"update_id", "ALL"}});
    while (list.size() < count) {
        const std::size_t i = list.size();
        const std::string texts[] = {listOf("ID=", updateId, i), listOf("GUID=", guid, 5 * i),
            "PRODUCT=Other " + number(i) + ";BULLETIN=TB24-" + number(9 * i), "SEVERITY=3;SP=SP" + number(i),
            "CRITICAL;ALLOW_UNSIGNED"};
        list.push_back({{"operation_id", number(i)}, {"update_id", texts[5 * i / count]}});
    }
    return list;
}

json queuedIds(std::size_t count)
{
    json list = json::array();
    for (std::size_t i = 0; i < count; ++i)
        list.push_back({{"operation_id", "1700000" + number(i)}, {"update_id", "ID=" + updateId(i)}});
    return list;
}
