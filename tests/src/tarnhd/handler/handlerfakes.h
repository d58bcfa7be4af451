#pragma once

#include "common/commonfactory.h"
#include "common/event.h"
#include "common/iglobalatom.h"
#include "common/ipatchstorage.h"
#include "common/iupdaterlauncher.h"
#include "support/fakesettings.h"
#include "support/record.h"
#include "tarnhd/actionscheduler.h"
#include "tarnhd/tarnhdfactory.h"
#include "tarnhd/tarnpatchmanager.h"

#include <atomic>
#include <stdexcept>

namespace support {

/// A store that tells when it is asked for a profile.
struct ProfileStore : FakeSettings {
    std::int64_t getInt64Value(const std::wstring& name) override
    {
        if (name == profileKey)
            profileReads.add("read");
        return FakeSettings::getInt64Value(name);
    }
    const std::wstring profileKey = L"status.windows.meridia.last_successful_update_timestamp";
    Record profileReads;
};

/// Nothing of the system: launchers, atoms and managers write into one record.
class FakeCommonFactory : public vx::tarn::common::CommonFactory {
public:
    std::shared_ptr<ProfileStore> store = std::make_shared<ProfileStore>();
    int storeError = 0; ///< what opening the store answers, until the retry callable gives up
    bool atomExists = false;
    std::atomic<bool> installationFinished = false; ///< with states, as the storage tells
    Record done;
    Record storeAttempts;

    std::shared_ptr<vx::settings::Settings> createSettings(const RetryCallback& retry) override
    {
        while (storeError != 0) {
            storeAttempts.add("failed");
            if (!retry(static_cast<vx::meridia::QrlMeridiaError_enum>(storeError)))
                throw std::runtime_error("store unreachable");
        }
        return FakeSettings::handle(store);
    }
    using CommonFactory::createSettings;
    std::shared_ptr<vx::tarn::common::IPatchStorage> createPatchStorage() override
    {
        return std::make_shared<PatchStorage>(*this);
    }
    std::shared_ptr<vx::tarn::common::IUpdaterLauncher> createUpdaterLauncher() override
    {
        return std::make_shared<Launcher>(done);
    }
    std::shared_ptr<vx::tarn::common::IGlobalAtom> createGlobalAtom(const std::wstring&) override
    {
        return std::make_shared<Atom>(*this);
    }
    std::shared_ptr<vx::tarn::common::Event> createEvent(
        bool manual, bool state, const std::wstring&, bool inherit, void*) override
    {
        return vx::tarn::common::createEvent(manual, state, {}, inherit);
    }

private:
    struct Launcher : vx::tarn::common::IUpdaterLauncher {
        explicit Launcher(Record& record) : done(record) {}
        void startScan() override { done.add("scan"); }
        void startScanIfOlderThan(std::int64_t) override { done.add("tick"); }
        void startScanAt(std::int64_t) override {}
        Record& done;
    };
    struct PatchStorage : vx::tarn::common::IPatchStorage {
        explicit PatchStorage(FakeCommonFactory& owner) : factory(owner) {}
        bool clear() override { return false; }
        bool savePatches(const vx::tarn::common::PatchMap&) override { return false; }
        bool loadPatches(vx::tarn::common::PatchMap&, std::vector<vx::tarn::common::ReportEvent>&) override
        {
            return false;
        }
        bool addPatchState(const vx::tarn::common::ReportEvent&) override { return false; }
        bool reportInstallationFinished(bool) override { return false; }
        bool isInstallationFinished() override { return factory.installationFinished; }
        bool hasPatchStates() override { return true; }
        FakeCommonFactory& factory;
    };
    struct Atom : vx::tarn::common::IGlobalAtom {
        explicit Atom(FakeCommonFactory& owner) : factory(owner) {}
        bool exists() override { return factory.atomExists; }
        bool create() override { return factory.atomExists = true; }
        FakeCommonFactory& factory;
    };
};

/// Managers without a thread.
class FakeTarnhdFactory : public vx::tarn::TarnhdFactory {
public:
    explicit FakeTarnhdFactory(FakeCommonFactory& common) : TarnhdFactory(&common), m_common(common) {}

    std::shared_ptr<vx::tarn::TarnpatchManager> createTarnpatchManager(
        const std::shared_ptr<vx::settings::Settings>& settings) override
    {
        return manager = std::make_shared<Manager>(settings, m_common);
    }
    std::shared_ptr<vx::tarn::ActionScheduler> createActionScheduler() override
    {
        return std::make_shared<Scheduler>(m_common.done);
    }

    struct Manager : vx::tarn::TarnpatchManager {
        Manager(const std::shared_ptr<vx::settings::Settings>& settings, FakeCommonFactory& common)
            : TarnpatchManager(settings, &common, std::chrono::seconds(1)), done(common.done)
        {}
        bool update() override
        {
            done.add("update");
            return running = true;
        }
        bool stop() override { return running.exchange(false); }
        bool isRunning() const override { return running; }
        /// Once, then it has ended.
        bool isAgentRunning() const override { return agentRuns.exchange(false); }
        void setArguments(const std::wstring& arguments) override
        {
            done.add("arguments " + std::string(arguments.begin(), arguments.end()));
        }
        void setStartReason(vx::tarn::AgentStartReason reason) override
        {
            done.add("reason " + std::to_string(static_cast<int>(reason)));
        }
        Record& done;
        std::atomic<bool> running{false};
        mutable std::atomic<bool> agentRuns{false};
    };
    std::shared_ptr<Manager> manager;

private:
    struct Scheduler : vx::tarn::ActionScheduler {
        explicit Scheduler(Record& record) : done(record) {}
        void onResume() override { done.add("resume"); }
        std::size_t cancelOneTimeTasks() override
        {
            done.add("cancel");
            return ActionScheduler::cancelOneTimeTasks();
        }
        Record& done;
    };

    FakeCommonFactory& m_common;
};

} // namespace support
