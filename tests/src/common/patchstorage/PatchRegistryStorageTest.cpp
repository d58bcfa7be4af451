#include "common/patchregistrystorage.h"

#include "support/logcapture.h"
#include "vxtl/registry.h"

#include <gmock/gmock.h>

namespace vx::tarn::common {
namespace {

constexpr const wchar_t* keyName = L"HKEY_LOCAL_MACHINE\\Software\\Vantorix\\tarn\\PatchStorage";
constexpr unsigned long allAccess = 0xf003f;

struct PatchRegistryStorageTest : testing::Test {
    std::shared_ptr<registry::Registry> registry = registry::createWin32Registry();
    PatchRegistryStorage storage{L"finished", L"patches", L"statuses", registry};
    support::LogCapture log{4};
    PatchMap patches;
    std::vector<ReportEvent> events;

    PatchRegistryStorageTest() { removeKey(); }
    ~PatchRegistryStorageTest() override { removeKey(); }
    void removeKey()
    {
        if (registry->doesKeyExist(keyName))
            registry->deleteTree(keyName);
    }
    std::shared_ptr<registry::RegistryKey> key() { return registry->openKey(keyName, allAccess); }
    static PatchMap twoPatches()
    {
        PatchMap map;
        map[-5].updateName = L"first";
        map[7].updateName = L"second \u00fc";
        return map;
    }
};

TEST_F(PatchRegistryStorageTest, keepsPatchesAndEventsAcrossObjects)
{
    const ReportEvent event{ReportEventType::ExternalRebootRequest, {}, 0, {}};
    EXPECT_TRUE(storage.reportInstallationFinished(true));
    EXPECT_TRUE(storage.savePatches(twoPatches()));
    EXPECT_FALSE(storage.isInstallationFinished()) << "saving clears an old flag";
    EXPECT_TRUE(storage.addPatchState(event));
    EXPECT_TRUE(storage.addPatchState(event));
    EXPECT_TRUE(storage.reportInstallationFinished(true));

    PatchRegistryStorage other(L"finished", L"patches", L"statuses", registry);
    EXPECT_TRUE(other.isInstallationFinished());
    EXPECT_TRUE(other.hasPatchStates());
    EXPECT_TRUE(other.loadPatches(patches, events));
    ASSERT_EQ(patches.size(), 2u);
    EXPECT_EQ(patches[-5].updateName, L"first");
    EXPECT_EQ(patches[7].updateName, L"second \u00fc");
    EXPECT_EQ(events.size(), 2u);
    EXPECT_TRUE(other.clear());
    EXPECT_FALSE(other.hasPatchStates());
}

TEST_F(PatchRegistryStorageTest, makesItsKeyAndAnswersNoWhenThereIsNothing)
{
    EXPECT_FALSE(storage.isInstallationFinished());
    EXPECT_TRUE(registry->doesKeyExist(keyName));
    EXPECT_FALSE(storage.hasPatchStates());
    EXPECT_TRUE(storage.savePatches({}));
    EXPECT_EQ(key()->getStringValue(L"patches"), L"{}");
    EXPECT_FALSE(storage.loadPatches(patches, events));
    EXPECT_TRUE(log.has(3, "Failed to load patches. Either \"patches\" or \"statuses\" doesn't exist")) << log.text();
}

TEST_F(PatchRegistryStorageTest, answersNoForValuesOfTheWrongKind)
{
    storage.hasPatchStates();
    key()->setInt32Value(L"finished", 2);
    EXPECT_FALSE(storage.isInstallationFinished());
    key()->setStringValue(L"finished", L"1");
    EXPECT_FALSE(storage.isInstallationFinished());
    EXPECT_TRUE(log.has(2, "Failed to check if installation finished. Caught exception: ")) << log.text();
    key()->setInt32Value(L"statuses", 1);
    EXPECT_TRUE(storage.hasPatchStates());
    key()->setStringValue(L"patches", L"{}");
    EXPECT_FALSE(storage.loadPatches(patches, events));
    EXPECT_TRUE(log.has(2, "Failed to save patches to a patch registry storage. Caught exception: ")) << log.text();
    EXPECT_FALSE(storage.addPatchState({}));
    EXPECT_TRUE(log.has(2, "Failed to add patch state to a patch registry storage. Caught exception: ")) << log.text();
}

TEST_F(PatchRegistryStorageTest, survivesGarbageTexts)
{
    storage.savePatches(twoPatches());
    const wchar_t* notLists[] = {L"{}", L"null", L"{", L""};
    for (const wchar_t* text : notLists) {
        key()->setStringValue(L"statuses", text);
        EXPECT_FALSE(storage.loadPatches(patches, events));
    }
    EXPECT_EQ(log.count("Failed to parse json. Caught exception: "), 4u) << log.text();
    EXPECT_EQ(patches.size(), 2u) << "what was read before the failure stays";

    key()->setStringValue(L"statuses", L"{}");
    EXPECT_TRUE(storage.addPatchState({ReportEventType::ExternalRebootRequest, {}, 0, {}}));
    EXPECT_TRUE(log.has(3, "Wrong value is in patch registry storage in statuses node.")) << log.text();
    EXPECT_TRUE(storage.loadPatches(patches, events));
    EXPECT_EQ(events.size(), 1u);

    key()->setStringValue(L"patches", L"{\"x\":{}}");
    EXPECT_THROW(storage.loadPatches(patches, events), std::invalid_argument);
    key()->setStringValue(L"patches", L"{\"99999999999999999999\":{}}");
    EXPECT_THROW(storage.loadPatches(patches, events), std::out_of_range);
}

} // namespace
} // namespace vx::tarn::common
