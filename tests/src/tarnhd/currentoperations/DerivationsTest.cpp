// Counts the hashes of a pass. The hash below takes the place of the system's when the program is linked.

#include "support/fakesettings.h"
#include "tarnhd/currentoperations/currentoperations.h"
#include "vxtl/crypto.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace {
int hashes = 0;
}

namespace vx::crypto {

std::vector<std::uint8_t> hash(std::span<const std::uint8_t> source)
{
    ++hashes;
    return {source.begin(), source.end()};
}

std::wstring toBase64String(std::span<const std::uint8_t> bytes)
{
    return {bytes.begin(), bytes.end()};
}

} // namespace vx::crypto

namespace vx::tarn {
namespace {

using nlohmann::json;

TEST(Derivations, areOneAPatchAndPassWhateverLogAndFilters)
{
    const auto store = std::make_shared<support::FakeSettings>();
    const TarnpatchSettings keys{nullptr};
    const TarnpatchStatus statusKeys{nullptr};
    store->setJsonValue(statusKeys.scanning.lastScanning.missingUpdates.key(),
        {{{"update_name", "a"}}, {{"update_name", "b"}}, {{"update_name", "c"}}});
    store->setJsonValue(statusKeys.installation.log.entries.key(), {{{"update_id", "x"}}});
    store->setJsonValue(keys.installation.deploymentQueue.key(),
        {{{"update_id", "ID=x&y"}}, {{"update_id", "ID=z"}}, {{"update_id", "GUID=z"}}, {{"update_id", "ALL"}}});
    CurrentOperations operations(support::FakeSettings::handle(store));
    for (const int expected : {3, 6}) {
        operations.update();
        EXPECT_EQ(hashes, expected);
    }
    EXPECT_EQ(store->getJsonValue(keys.currentStatus.patchesToInstall.key()).size(), 3u);
}

} // namespace
} // namespace vx::tarn
