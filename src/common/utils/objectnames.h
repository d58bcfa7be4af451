#pragma once

namespace vx::tarn::common {

/// Names by which plug-in, agent and tools meet in the system.

/// An auto-reset event: the plug-in is to start the agent.
inline constexpr wchar_t startEventName[] = L"Global\\ScanEvent{450C4D2D-AE20-440a-9AAA-F770900831AD}";
/// The mutex of those who set it.
inline constexpr wchar_t startMutexName[] = L"Global\\ScanMutex{450C4D2D-AE20-440a-9AAA-F770900831AD}";
/// The mutex of the deployment queue, which is read, changed and written back as a whole.
inline constexpr wchar_t deploymentQueueMutexName[] =
    L"TARN - DEPLOYMENT QUEUE - {D8AFE2BA-BD53-4D73-81D7-C8EF0DC5E27E}";
/// The atom that is there once the first run after a boot is done.
inline constexpr wchar_t postRebootAtomName[] = L"Global\\PostRebootATOM{894D1810-89A9-4363-A8C5-9F429B518809}";

} // namespace vx::tarn::common
