#include "agent/patchstates.h"

namespace devhost::agent {

using enum vx::tarn::ValueItem;
using Result = vx::tarn::InstallationResultItem;

bool waitsForReboot(vx::tarn::ValueItem state)
{
    return state == InstallationWillContinueAfterReboot || state == InstallationCompletedPendingReboot;
}

bool isInstalled(vx::tarn::ValueItem state)
{
    return state == InstallationCompleted || state == InstallationExcluded;
}

Result suggestedResult(vx::tarn::ValueItem state)
{
    switch (state) {
    case InstallationRequested:
    case InstallationCanceled:
    case FileDownloading: return Result::InstallationNotStarted;
    case FileDownloadCompleted:
    case InstallationExecuting: return Result::DownloadSuccess;
    case FileDownloadFailed:
    case FileManualDownloadRequired:
    case FileIsMissing: return Result::DownloadError;
    case FileValidationFailed: return Result::SignatureVerificationError;
    case InstallationCompleted: return Result::InstallationSuccess;
    case InstallationFailed: return Result::InstallationError;
    case InstallationHungUp: return Result::InstallationHungUp;
    case InstallationExcluded: return Result::Excluded;
    case InstallationCompletedPendingReboot:
    case InstallationWillContinueAfterReboot: break;
    }
    return Result::InstallationUnknown;
}

} // namespace devhost::agent
