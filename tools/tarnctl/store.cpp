#include "tarnctl/store.h"

#include "common/utils/folders.h"
#include "meridia-settings/meridiasettingsapi.h"
#include "tarnctl/exitcode.h"
#include "vxtl/registry.h"

namespace tarnctl {

using vx::delayload::LoadStatus;

namespace {

/// As the plug-in looks for the host's library, and then beside the agent, which needs it too: the tool may stand alone
/// in a folder of its own.
LoadStatus loadLibrary(vx::meridia::QrlMeridiaApi& api)
{
    using namespace vx::delayload;
    const auto agentFolder = vx::tarn::common::utils::getInstallationPath(vx::registry::createWin32Registry());
    LoadResult result{};
    const auto bind = [&](LateBinder& binder) { vx::meridia::bindQrlMeridiaApi(binder, api); };
    auto status = delayLoadInitialize(ownComponent, bind, result);
    if (status == LoadStatus::ModuleNotFound && !agentFolder.empty())
        status = delayLoadInitialize(LoadContext{agentFolder, false, ownComponent}, bind, result);
    if (status != LoadStatus::Success)
        throw CommandError(ExitCode::Unreadable,
            "the host's library " + result.libraryName() +
                (status == LoadStatus::ModuleNotFound ? " is nowhere: put tarnctl beside the host's program"
                                                      : " lacks the function " + result.functionName()));
    return status;
}

} // namespace

std::shared_ptr<vx::meridia::SettingsApi> openStore()
{
    return std::make_shared<vx::meridia::SettingsApi>(
        L"safe", L"S-1-5-18", L"Vantorix Tarnpatch Observer", loadLibrary);
}

} // namespace tarnctl
