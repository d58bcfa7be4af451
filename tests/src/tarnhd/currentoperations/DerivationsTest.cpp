// Counts the hashes of a pass. The hash below takes the place of the system's when the program is linked.

#include "support/fakesettings.h"
#include "tarnhd/currentoperations/currentoperations.h"
#include "vxtl/crypto.h"

static int hashes = 0;

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

TEST(Derivations, areOneAPatchAndPassWhateverLogAndFilters)
{
    const auto store = std::make_shared<support::FakeSettings>();
    const TarnpatchSettings settings{support::FakeSettings::handle(store)};
    const TarnpatchStatus status{support::FakeSettings::handle(store)};
    store->set(status.scanning.lastScanning.missingUpdates,
        {{{"update_name", "a"}}, {{"update_name", "b"}}, {{"update_name", "c"}}});
    store->set(status.installation.log.entries, {{{"update_id", "x"}}});
    store->set(settings.installation.deploymentQueue,
        {{{"update_id", "ID=x&y"}}, {{"update_id", "ID=z"}}, {{"update_id", "GUID=z"}}, {{"update_id", "ALL"}}});
    CurrentOperations operations(support::FakeSettings::handle(store));
    for (const int expected : {3, 6}) {
        operations.update();
        EXPECT_EQ(hashes, expected);
    }
    EXPECT_EQ(store->get(settings.currentStatus.patchesToInstall).size(), 3u);
}

} // namespace
} // namespace vx::tarn
