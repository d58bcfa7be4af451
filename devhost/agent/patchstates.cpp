#include "agent/patchstates.h"

namespace devhost::agent {

using enum vx::tarn::ValueItem;

bool waitsForReboot(vx::tarn::ValueItem state)
{
    return state == InstallationWillContinueAfterReboot || state == InstallationCompletedPendingReboot;
}

bool isInstalled(vx::tarn::ValueItem state)
{
    return state == InstallationCompleted || state == InstallationExcluded;
}

std::string suggestedResult(vx::tarn::ValueItem state)
{
    switch (state) {
    case InstallationRequested:
    case InstallationCanceled:
    case FileDownloading: return "installation_not_started";
    case FileDownloadCompleted:
    case InstallationExecuting: return "download_success";
    case FileDownloadFailed:
    case FileManualDownloadRequired:
    case FileIsMissing: return "download_error";
    case FileValidationFailed: return "signature_verification_error";
    case InstallationCompleted: return "installation_success";
    case InstallationFailed: return "installation_error";
    case InstallationHungUp: return "installation_hung_up";
    case InstallationExcluded: return "excluded";
    case InstallationCompletedPendingReboot:
    case InstallationWillContinueAfterReboot: break;
    }
    return "installation_unknown";
}

} // namespace devhost::agent
