#pragma once

#include "common/factory/commonfactory.h"
#include "common/reboot/icomputerrebooter.h"
#include "common/registrykeynotifier/iregistrykeynotifier.h"
#include "common/serviceproxy/iservice.h"

#include <gtest/gtest.h>
#include <windows.h>

namespace vx::tarn {

/// Is itself the service, the computer and the watch that it gives out. The registry is the real one.
class FakeSystem : public common::CommonFactory,
                   public common::IService,
                   public common::IComputerRebooter,
                   public common::IRegistryKeyNotifier {
public:
    ServiceState state = ServiceState::Stopped;
    std::function<common::ServiceOperation()> onStop = [] {
        return common::ServiceOperation([](auto) { return true; });
    };
    bool reboots = false; ///< whether the computer obeys
    int rebootsAsked = 0;
    bool watchIsReal = false;
    int watches = 0, armed = 0;
    std::function<void(const IWaitable& event)> onArm = [](const IWaitable& event) { SetEvent(event.getHandle()); };

    std::shared_ptr<common::IService> createServiceProxy(const std::wstring& name) override
    {
        EXPECT_EQ(name, L"wuauserv");
        return {notOwned, this};
    }
    std::shared_ptr<common::IComputerRebooter> createComputerRebooter() override { return {notOwned, this}; }
    std::shared_ptr<common::IRegistryKeyNotifier> createRegistryKeyNotifier() override
    {
        ++watches;
        return watchIsReal ? CommonFactory::createRegistryKeyNotifier()
                           : std::shared_ptr<common::IRegistryKeyNotifier>(notOwned, this);
    }

    std::wstring getName() override { return {}; }
    void changeStartType(ServiceStartType) override {}
    ServiceStartType getStartType() override { return {}; }
    ServiceState getStartState() override { return state; }
    common::ServiceOperation beginStart(std::chrono::milliseconds, common::ServiceWait) override { return {}; }
    common::ServiceOperation beginStop(std::chrono::milliseconds timeout, common::ServiceWait wait) override
    {
        EXPECT_EQ(timeout, std::chrono::seconds(10));
        EXPECT_EQ(wait, common::ServiceWait::Yes);
        return onStop();
    }
    bool isStartPending() override { return false; }
    bool isRunning() override { return false; }
    bool isStopped() override { return false; }
    bool isStopPending() override { return false; }
    bool isPausing() override { return false; }
    ServiceState getState() override { return state; }

    bool initiateReboot() override { return ++rebootsAsked, reboots; }

    bool initialize(void* root, const std::wstring& path, unsigned long access) override
    {
        EXPECT_EQ(root, HKEY_LOCAL_MACHINE);
        EXPECT_EQ(path, L"Software\\Vantorix");
        EXPECT_EQ(access, 0x10u);
        return false;
    }
    void notifyChangeKeyValue(unsigned long filter, const IWaitable& event) override
    {
        EXPECT_EQ(filter, 1u);
        ++armed;
        onArm(event);
    }

private:
    const std::shared_ptr<void> notOwned;
};

} // namespace vx::tarn
