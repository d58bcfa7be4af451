#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace vx {
class IWaitable;
}
namespace vx::settings {
class Settings;
namespace details {
class SettingsImpl;
}
} // namespace vx::settings
namespace vx::alerts {
class AlertApiImpl;
}
namespace vx::flyers {
class FlyerApiImpl;
}
namespace vx::registry {
class Registry;
}
namespace vx::meridia {
enum class QrlMeridiaError_enum : int;
}
namespace vx::tarn {
class TarnpatchSettings;
}

namespace vx::tarn::common {

class Event;
class IComputerRebooter;
class IDeploymentQueue;
class IDownloader;
class IGlobalAtom;
class IGroupPolicy;
class IPCClient;
class IPCServer;
class IPatchStorage;
class IProcess;
class IRegistryKeyNotifier;
class IService;
class ISyncFolders;
class ISystemRestorePoint;
class ITimeout;
class IUpdaterLauncher;
class IUserSessions;
class IWinCertStorageDriver;
class IWindowsUpdates;
class IWinInetDriver;
class InternetProxy;
class RebootDialog;
class WinCertStorage;
class WinHTTPDefaultProxyChanger;

/// Makes what the plug-in shares with the agent; each call makes a new object. Two stages: before
/// setSettings only operations that need no settings may be called. setStopEvent, setStoreWrapper and setSettings come
/// once, before other threads exist; afterwards any thread may call. Operations pass on what the constructors throw.
class CommonFactory {
public:
    /// Answers whether the store is to be tried again after this error.
    using RetryCallback = std::function<bool(meridia::QrlMeridiaError_enum)>;
    /// Makes of a URL and the management server's the URL that a download takes.
    using DownloadUrlBuilder = std::function<std::wstring(const std::wstring& url, const std::wstring& hqUrl)>;
    /// Puts something between an access to the store and what caches its values.
    using StoreWrapper = std::function<std::shared_ptr<settings::details::SettingsImpl>(
        std::shared_ptr<settings::details::SettingsImpl> store)>;

    CommonFactory();
    virtual ~CommonFactory();
    CommonFactory(const CommonFactory&) = delete;
    CommonFactory& operator=(const CommonFactory&) = delete;

    /// Ends waits for named mutexes in all launchers and queues that are made from here on; without one they have no
    /// end but the mutex.
    virtual void setStopEvent(std::shared_ptr<const IWaitable> stopEvent);
    /// Around each access that createSettings opens from here on; without one there is nothing in between.
    void setStoreWrapper(StoreWrapper wrapper);
    virtual void setSettings(std::shared_ptr<settings::Settings> settings);
    /// One attempt.
    virtual std::shared_ptr<settings::Settings> createSettings();
    /// Blocks for as long as `retry` answers true. The exception at the end always carries code 3.
    virtual std::shared_ptr<settings::Settings> createSettings(const RetryCallback& retry);
    /// By the settings as they are now.
    virtual std::shared_ptr<InternetProxy> createProxy();
    /// Changes the machine's default proxy for as long as the object lives.
    virtual std::shared_ptr<WinHTTPDefaultProxyChanger> createProxyChanger(
        const std::wstring& proxy, const std::wstring& bypass);
    virtual std::shared_ptr<IWinInetDriver> createWinInetDriver();
    /// Throws what createProxy throws.
    virtual std::shared_ptr<IDownloader> createDownloader();
    virtual std::shared_ptr<ISyncFolders> createSyncFolders();
    virtual std::shared_ptr<ISystemRestorePoint> createSystemRestorePoint();
    /// Finds the host's flyer library; throws BaseException without it. The alert library likewise.
    virtual std::shared_ptr<flyers::FlyerApiImpl> createFlyerApi();
    virtual std::shared_ptr<alerts::AlertApiImpl> createAlertApi();
    virtual std::shared_ptr<registry::Registry> createRegistry();
    virtual std::shared_ptr<IGroupPolicy> createGroupPolicy();
    virtual std::shared_ptr<IService> createServiceProxy(const std::wstring& name);
    virtual std::shared_ptr<IComputerRebooter> createComputerRebooter();
    virtual std::shared_ptr<IRegistryKeyNotifier> createRegistryKeyNotifier();
    virtual std::shared_ptr<IGlobalAtom> createGlobalAtom(const std::wstring& name);
    /// Waits up to 60 seconds for the start event, which the agent manager makes.
    virtual std::shared_ptr<IUpdaterLauncher> createUpdaterLauncher();
    virtual std::shared_ptr<IWindowsUpdates> createWindowsUpdates();
    /// `securityDescriptor`: a native descriptor or null, borrowed for the call.
    virtual std::shared_ptr<Event> createEvent(
        bool manualReset, bool initialState, const std::wstring& name, bool inheritHandle, void* securityDescriptor);
    virtual std::shared_ptr<Event> openEvent(unsigned long access, const std::wstring& name, bool inheritHandle);
    virtual std::shared_ptr<IProcess> createProcess();
    /// Both need the host's IPC library at their first use only. `access` and `owner` are the library's.
    virtual std::shared_ptr<IPCServer> createIpcServer(const std::string& channelName, std::uint32_t access);
    virtual std::shared_ptr<IPCClient> createIpcClient(const std::string& channelName, std::uint32_t owner);
    /// `initialDelay` in milliseconds.
    virtual std::shared_ptr<ITimeout> createTimeoutGenerator(std::uint64_t initialDelay);
    virtual DownloadUrlBuilder buildDownloadUrl();
    virtual std::shared_ptr<IPatchStorage> createPatchStorage();
    /// With a store access of its own; one attempt.
    virtual std::shared_ptr<WinCertStorage> createWinCertStorage();
    virtual std::shared_ptr<IWinCertStorageDriver> createWinCertStorageDriver();
    virtual std::shared_ptr<IUserSessions> createUserSessions();
    /// With a store access of its own; one attempt.
    virtual std::shared_ptr<RebootDialog> createRestart();
    /// With a store access of its own; one attempt.
    virtual std::shared_ptr<IDeploymentQueue> createDeploymentQueue();
    virtual std::shared_ptr<IDeploymentQueue> createDeploymentQueue(std::shared_ptr<settings::Settings> settings);

protected:
    std::shared_ptr<const IWaitable> m_stopEvent;           ///< empty without setStopEvent
    StoreWrapper m_storeWrapper;                            ///< empty without setStoreWrapper
    std::shared_ptr<settings::Settings> m_settings;         ///< empty until setSettings
    std::shared_ptr<TarnpatchSettings> m_tarnpatchSettings; ///< likewise
};

} // namespace vx::tarn::common
