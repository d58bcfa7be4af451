#include "common/factory/commonfactory.h"
#include "qrl-plugin/pluginimpl.h"
#include "tarnhd/factory/tarnhdfactory.h"
#include "tarnhd/handler/tarnhandler.h"
#include "vxtl/exception.h"

#include <windows.h>

namespace {

using vx::logging::Level;
using vx::logging::LogStream;

// Runs on the host's main-callback thread, where the handler will also run and end.
std::shared_ptr<vx::qrl::PluginImpl> makePlugin()
{
    auto commonFactory = std::make_shared<vx::tarn::common::CommonFactory>();
    auto factory = std::make_shared<vx::tarn::TarnhdFactory>(commonFactory.get());
    return std::make_shared<vx::tarn::TarnHandler>(std::move(commonFactory), std::move(factory));
}

} // namespace

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, void*)
{
    if (reason != DLL_PROCESS_ATTACH)
        return TRUE;
    try {
        LogStream(Level::Debug) << "Proccess attach";
        vx::qrl::registerPluginFactory(makePlugin);
        return TRUE;
    } catch (const std::exception& e) {
        LogStream(Level::Error) << e;
        return FALSE;
    } catch (...) {
        LogStream(Level::Error) << "Unknown exception";
        throw;
    }
}
