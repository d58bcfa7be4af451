#include "qrl-probe/entries.h"
#include "vxtl/guarded.h"

#include <windows.h>

namespace {

using namespace tools::qrlprobe;

BOOL attach()
{
    return vx::guarded([] { loadedProbe = new Probe(entries()); });
}

void detach(bool isProcessEnding)
{
    if (!loadedProbe)
        return;
    if (isProcessEnding)
        loadedProbe->endProcess();
    else if (loadedProbe->unload())
        delete loadedProbe;
}

} // namespace

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, void* isProcessEnding)
{
    if (reason == DLL_PROCESS_ATTACH)
        return attach();
    if (reason == DLL_PROCESS_DETACH)
        detach(isProcessEnding);
    return TRUE;
}
