#include "common/factory/commonfactory.h"

#include "common/factory/createsettings.h"

#include "alert-api/vxalertapi.h"
#include "common/certificates/wincertstorage.h"
#include "common/certificates/wincertstoragedriver.h"
#include "common/deploymentqueue/deploymentqueue.h"
#include "common/downloader/downloaddriver.h"
#include "common/downloader/downloader.h"
#include "common/event/event.h"
#include "common/globalatom/globalatom.h"
#include "common/internetproxy/autoproxydriver.h"
#include "common/internetproxy/createproxy.h"
#include "common/internetproxy/downloadurl.h"
#include "common/internetproxy/sessiondriver.h"
#include "common/patchstorage/patchregistrystorage.h"
#include "common/patchstorage/patchstorageplace.h"
#include "common/process/process.h"
#include "common/reboot/computerrebooter.h"
#include "common/reboot/vxrestart.h"
#include "common/registrykeynotifier/registrykeynotifier.h"
#include "common/serviceproxy/serviceproxy.h"
#include "common/settings/tarnpatchsettings.h"
#include "common/syncfolders/syncfolders.h"
#include "common/systemrestorepoint/systemrestorepoint.h"
#include "common/timeout/expbackofftimeout.h"
#include "common/updaterlauncher/updaterlauncher.h"
#include "common/usersessions/usersessions.h"
#include "common/utils/objectnames.h"
#include "common/windowsupdates/automaticupdatesdriver.h"
#include "common/windowsupdates/grouppolicy.h"
#include "common/windowsupdates/grouppolicydriver.h"
#include "common/windowsupdates/windowsupdates.h"
#include "common/winhttpproxy/winhttpdefaultproxychanger.h"
#include "common/winhttpproxy/winhttpproxychangerimpl.h"
#include "common/wininet/wininetdriver.h"
#include "flyer-api/vxflyerapi.h"
#include "ipc-api/ipcclient.h"
#include "ipc-api/ipcserver.h"
#include "meridia-settings/meridiasettingsapi.h"
#include "settings-api/cachedsettings.h"
#include "vxtl/globalmutex.h"
#include "vxtl/registry.h"

namespace vx::tarn::common {

namespace {

// Two layers, as a store that is away for a while must not stop the plug-in: the cache answers and keeps what it is to
// write until the store is back.
std::shared_ptr<settings::Settings> openStore(const CommonFactory::StoreWrapper& wrap)
{
    std::shared_ptr<settings::details::SettingsImpl> store =
        std::make_shared<meridia::SettingsApi>(L"safe", L"S-1-5-18", L"Vantorix Tarnpatch Handler");
    if (wrap)
        store = wrap(std::move(store));
    return std::make_shared<settings::Settings>(std::make_shared<settings::CachedSettings>(std::move(store)));
}

} // namespace

CommonFactory::CommonFactory() = default;

CommonFactory::~CommonFactory() = default;

void CommonFactory::setStopEvent(std::shared_ptr<const IWaitable> stopEvent)
{
    m_stopEvent = std::move(stopEvent);
}

void CommonFactory::setStoreWrapper(StoreWrapper wrapper)
{
    m_storeWrapper = std::move(wrapper);
}

void CommonFactory::setSettings(std::shared_ptr<settings::Settings> settings)
{
    m_settings = std::move(settings);
    m_tarnpatchSettings = std::make_shared<TarnpatchSettings>(m_settings);
}

std::shared_ptr<settings::Settings> CommonFactory::createSettings()
{
    return createSettings([](meridia::QrlMeridiaError_enum) { return false; });
}

std::shared_ptr<settings::Settings> CommonFactory::createSettings(const RetryCallback& retry)
{
    VX_LOG_SCOPE();
    return common::createSettings([this] { return openStore(m_storeWrapper); }, retry);
}

std::shared_ptr<InternetProxy> CommonFactory::createProxy()
{
    return common::createProxy(m_settings, std::make_shared<SessionDriver>(), std::make_shared<AutoProxyDriver>());
}

std::shared_ptr<WinHTTPDefaultProxyChanger> CommonFactory::createProxyChanger(
    const std::wstring& proxy, const std::wstring& bypass)
{
    return std::make_shared<WinHTTPDefaultProxyChanger>(
        ProxyConfiguration{proxy, bypass}, std::make_shared<WinHTTPProxyChangerImpl>());
}

std::shared_ptr<IWinInetDriver> CommonFactory::createWinInetDriver()
{
    return std::make_shared<WinInetDriver>();
}

std::shared_ptr<IDownloader> CommonFactory::createDownloader()
{
    return std::make_shared<Downloader>(
        createProxy(), createWinInetDriver(), createRegistry(), std::make_shared<DownloadDriver>());
}

std::shared_ptr<ISyncFolders> CommonFactory::createSyncFolders()
{
    return std::make_shared<SyncFolders>();
}

std::shared_ptr<ISystemRestorePoint> CommonFactory::createSystemRestorePoint()
{
    return std::make_shared<SystemRestorePoint>(std::make_unique<SystemRestoreDriver>());
}

std::shared_ptr<flyers::FlyerApiImpl> CommonFactory::createFlyerApi()
{
    return std::make_shared<flyers::VxFlyerApi>();
}

std::shared_ptr<alerts::AlertApiImpl> CommonFactory::createAlertApi()
{
    return std::make_shared<alerts::VxAlertApi>();
}

std::shared_ptr<registry::Registry> CommonFactory::createRegistry()
{
    return registry::createWin32Registry();
}

std::shared_ptr<IGroupPolicy> CommonFactory::createGroupPolicy()
{
    return std::make_shared<GroupPolicy>(std::make_shared<GroupPolicyDriver>());
}

std::shared_ptr<IService> CommonFactory::createServiceProxy(const std::wstring& name)
{
    return std::make_shared<ServiceProxy>(name);
}

std::shared_ptr<IComputerRebooter> CommonFactory::createComputerRebooter()
{
    return std::make_shared<ComputerRebooter>(std::make_unique<RebootDriver>());
}

std::shared_ptr<IRegistryKeyNotifier> CommonFactory::createRegistryKeyNotifier()
{
    return std::make_shared<RegistryKeyNotifier>();
}

std::shared_ptr<IGlobalAtom> CommonFactory::createGlobalAtom(const std::wstring& name)
{
    return std::make_shared<GlobalAtom>(name);
}

std::shared_ptr<IUpdaterLauncher> CommonFactory::createUpdaterLauncher()
{
    return std::make_shared<UpdaterLauncher>(UpdaterLauncherOptions{}, m_stopEvent);
}

std::shared_ptr<IWindowsUpdates> CommonFactory::createWindowsUpdates()
{
    return std::make_shared<WindowsUpdates>(
        createGroupPolicy(), createRegistry(), std::make_shared<AutomaticUpdatesDriver>());
}

std::shared_ptr<Event> CommonFactory::createEvent(
    bool manualReset, bool initialState, const std::wstring& name, bool inheritHandle, void* securityDescriptor)
{
    return common::createEvent(manualReset, initialState, name, inheritHandle, securityDescriptor);
}

std::shared_ptr<Event> CommonFactory::openEvent(unsigned long access, const std::wstring& name, bool inheritHandle)
{
    return common::openEvent(access, name, inheritHandle);
}

std::shared_ptr<IProcess> CommonFactory::createProcess()
{
    return std::make_shared<Process>();
}

std::shared_ptr<IPCServer> CommonFactory::createIpcServer(const std::string& channelName, std::uint32_t access)
{
    return std::make_shared<IPCServer>(channelName, access);
}

std::shared_ptr<IPCClient> CommonFactory::createIpcClient(const std::string& channelName, std::uint32_t owner)
{
    return std::make_shared<IPCClient>(channelName, owner);
}

std::shared_ptr<ITimeout> CommonFactory::createTimeoutGenerator(std::uint64_t initialDelay)
{
    return std::make_shared<ExpBackoffTimeout>(initialDelay);
}

CommonFactory::DownloadUrlBuilder CommonFactory::buildDownloadUrl()
{
    return common::buildDownloadUrl;
}

std::shared_ptr<IPatchStorage> CommonFactory::createPatchStorage()
{
    return std::make_shared<PatchRegistryStorage>(storedFinished, storedPatches, storedStatuses, createRegistry());
}

std::shared_ptr<WinCertStorage> CommonFactory::createWinCertStorage()
{
    return std::make_shared<WinCertStorage>(createWinCertStorageDriver(), createSettings());
}

std::shared_ptr<IWinCertStorageDriver> CommonFactory::createWinCertStorageDriver()
{
    return std::make_shared<WinCertStorageDriver>();
}

std::shared_ptr<IUserSessions> CommonFactory::createUserSessions()
{
    return std::make_shared<UserSessions>();
}

std::shared_ptr<RebootDialog> CommonFactory::createRestart()
{
    return std::make_shared<VxRestart>(
        createSettings(), [this] { return createProcess(); }, createUserSessions(), createRegistry());
}

std::shared_ptr<IDeploymentQueue> CommonFactory::createDeploymentQueue()
{
    return createDeploymentQueue(createSettings());
}

std::shared_ptr<IDeploymentQueue> CommonFactory::createDeploymentQueue(std::shared_ptr<settings::Settings> settings)
{
    return std::make_shared<DeploymentQueue>(
        std::move(settings), std::make_shared<sync::GlobalMutex>(deploymentQueueMutexName, true, m_stopEvent));
}

} // namespace vx::tarn::common
