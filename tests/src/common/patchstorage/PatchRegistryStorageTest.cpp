#include "common/patchstorage/patchregistrystorage.h"
#include "vxtl/registry.h"

using namespace vx;
using namespace vx::tarn::common;

namespace {

constexpr const wchar_t* keyName = L"HKEY_LOCAL_MACHINE\\Software\\Vantorix\\tarn\\PatchStorage";

struct PatchRegistryStorageTest : testing::Test {
    PatchRegistryStorageTest()
    {
        removeKey();
        stored[-5].updateName = L"first";
        stored[7].updateName = L"second \u00fc";
    }
    ~PatchRegistryStorageTest() override { removeKey(); }
    void removeKey()
    {
        if (registry->doesKeyExist(keyName))
            registry->deleteTree(keyName);
    }
    std::shared_ptr<registry::RegistryKey> key() { return registry->openKey(keyName, registry::allAccess); }
    bool loads() { return storage.loadPatches(patches, events); }

    std::shared_ptr<registry::Registry> registry = registry::createWin32Registry();
    PatchRegistryStorage storage{L"finished", L"patches", L"statuses", registry};
    const ReportEvent event{ReportEventType::ExternalRebootRequest, {}, 0, {}};
    PatchMap stored, patches;
    std::vector<ReportEvent> events;
};

} // namespace

TEST_F(PatchRegistryStorageTest, keepsPatchesAndEventsAcrossObjects)
{
    EXPECT_TRUE(storage.reportInstallationFinished(true));
    EXPECT_TRUE(storage.savePatches(stored));
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
    EXPECT_FALSE(storage.hasPatchStates());
}

TEST_F(PatchRegistryStorageTest, answersNoForWhatIsMissingOrOfTheWrongKind)
{
    EXPECT_FALSE(storage.isInstallationFinished());
    EXPECT_FALSE(storage.hasPatchStates());
    EXPECT_TRUE(storage.savePatches({}));
    EXPECT_EQ(key()->getStringValue(L"patches"), L"{}");
    EXPECT_FALSE(loads());
    key()->setInt32Value(L"finished", 2);
    EXPECT_FALSE(storage.isInstallationFinished());
    key()->setStringValue(L"finished", L"1");
    EXPECT_FALSE(storage.isInstallationFinished());
    key()->setInt32Value(L"statuses", 1);
    EXPECT_TRUE(storage.hasPatchStates());
    EXPECT_FALSE(loads());
    EXPECT_FALSE(storage.addPatchState(event));
}

TEST_F(PatchRegistryStorageTest, survivesGarbageTexts)
{
    storage.savePatches(stored);
    for (const std::wstring& text :
        {std::wstring(50'000, L'['), std::wstring(L"null"), std::wstring(L"{"), std::wstring(), std::wstring(L"{}")}) {
        key()->setStringValue(L"statuses", text);
        EXPECT_FALSE(loads());
    }
    EXPECT_EQ(patches.size(), 2u) << "what was read before the failure stays";
    EXPECT_TRUE(storage.addPatchState(event));
    EXPECT_TRUE(loads());
    EXPECT_EQ(events.size(), 1u);
    key()->setStringValue(L"patches", L"[]");
    EXPECT_FALSE(loads());
    key()->setStringValue(L"patches", L"{\"x\":{}}");
    EXPECT_THROW(loads(), std::invalid_argument);
}
