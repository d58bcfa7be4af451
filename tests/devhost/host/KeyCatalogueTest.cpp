#include "host/keycatalogue.h"

#include <gmock/gmock.h>

namespace devhost::host {

using store::Type;

TEST(KeyCatalogue, knowsTheTypesOfTheProductsKeys)
{
    const struct {
        const char* key;
        std::optional<Type> type;
    } rows[] = {
        {"windows.tarnpatch.enabled", Type::Boolean},
        {"windows.tarnpatch.scanning.automatic.polling_interval", Type::Int32},
        {"windows.tarnpatch.installation.reboot.force_in", Type::Int32},
        {"windows.tarnpatch.installation.reboot.force_in_seconds", Type::Int64},
        {"status.windows.tarnpatch.scanning.last_scanning.timestamp", Type::Int64},
        {"windows.tarnpatch.installation.automatic.mode", Type::String},
        {"windows.tarnpatch.installation.deployment_queue", Type::Object},
        {"status.windows.meridia.last_successful_update_timestamp", Type::Int64},
        {"windows.tarnpatch.scanning.exclude_updates.by_rule", std::nullopt},
        {"windows.tarnpatch.Enabled", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& row : rows)
        EXPECT_EQ(KeyCatalogue::typeOf(row.key), row.type) << row.key;
}

TEST(KeyCatalogue, findsEachOfItsKeys)
{
    for (const auto& key : KeyCatalogue::keys())
        EXPECT_EQ(KeyCatalogue::typeOf(key.name), key.type) << key.name;
}

TEST(KeyCatalogue, readsTypeNames)
{
    EXPECT_EQ(typeFromName("int64"), Type::Int64);
    EXPECT_EQ(typeFromName("json"), Type::Object);
    EXPECT_EQ(typeFromName("object"), Type::Object);
    EXPECT_EQ(typeFromName("double"), std::nullopt);
}

} // namespace devhost::host
