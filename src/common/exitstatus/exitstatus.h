#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vx::tarn::common {

/// A result code with its text; the codes are also the agent's process exit codes. Immutable; equal when
/// the codes are.
class ExitStatus {
public:
    constexpr ExitStatus(std::int32_t code, std::wstring_view message) noexcept : m_code(code), m_message(message) {}

    constexpr std::int32_t code() const noexcept { return m_code; }
    std::wstring message() const { return std::wstring(m_message); }

    friend constexpr bool operator==(const ExitStatus& a, const ExitStatus& b) noexcept { return a.m_code == b.m_code; }

private:
    std::int32_t m_code;
    std::wstring_view m_message; ///< a literal
};

/// The known statuses, in steps of 256 by component; the gaps between the numbers stay free. A number from
/// outside is compared with the statuses that it is expected to be; nothing looks a row up by its number.
namespace exitstatus {

// General.
inline constexpr ExitStatus success{0, L"Normal exit; Success."};
inline constexpr ExitStatus unknownStatus{1, L"Internal error; Unknown status."};
inline constexpr ExitStatus badArgument{2, L"Internal error; Bad argument."};
inline constexpr ExitStatus failedToParse{3, L"Internal error; Failed to parse."};
inline constexpr ExitStatus failedToCreateAction{4, L"Internal error; Failed to create an action."};
inline constexpr ExitStatus failedToDownload{5, L"Internal error; Failed to download."};
inline constexpr ExitStatus emptyUrl{6, L"Internal error; Empty url error."};
inline constexpr ExitStatus resourceNotFound{7, L"Internal error; Resource not found."};
inline constexpr ExitStatus resourceAlreadyExists{8, L"Internal error; Resource already exists."};
inline constexpr ExitStatus failedToRunIpcServer{16, L"Internal error; Failed to run IPC server."};
inline constexpr ExitStatus failedToSendToDataPipeline{17, L"Internal error; Failed to send to data pipeline."};
inline constexpr ExitStatus resourceNotReady{18, L"Internal error; Resource not ready for download. Try later"};
inline constexpr ExitStatus failedToRunProcess{19, L"Internal error; Failed to run process."};
inline constexpr ExitStatus failedToConnectToMeridia{21, L"Internal error; Failed to connect to meridia."};
inline constexpr ExitStatus rebootNeeded{22, L"Internal status; Reboot Needed."};
inline constexpr ExitStatus applicationCrashed{153, L"Internal error; Application has been crashed."};
// Synchronizer.
inline constexpr ExitStatus failedToCreateSynchronizer{257, L"Synchronizer error; Failed to create a synchronizer."};
inline constexpr ExitStatus failedToGetSynchronizerComponents{
    258, L"Synchronizer error; Failed to get synchronizer components."};
inline constexpr ExitStatus failedToGetLocalFileSyncInfo{
    259, L"Synchronizer error; Failed to get local file sync info."};
inline constexpr ExitStatus failedToSyncComponent{260, L"Synchronizer error; Failed to sync a component."};
inline constexpr ExitStatus failedToCheckComponentSignature{
    261, L"Synchronizer error; Failed to check a component signature."};
inline constexpr ExitStatus failedToBackupDatabaseComponent{
    262, L"Synchronizer error; Failed to backup a database component."};
inline constexpr ExitStatus failedToUpdateDatabaseComponent{
    263, L"Synchronizer error; Failed to update a database component."};
inline constexpr ExitStatus failedToClearBackup{264, L"Synchronizer error; Failed to clear backup."};
// Scanner.
inline constexpr ExitStatus failedToCreateScanner{513, L"Scanner error; Failed to create a scanner."};
inline constexpr ExitStatus failedToInitializeScanner{514, L"Scanner error; Failed to initialize a scanner."};
inline constexpr ExitStatus failedToScanForUpdates{515, L"Scanner error; Failed to scan for updates."};
inline constexpr ExitStatus failedToCreateMetadataExporter{
    516, L"Scanner error; Failed to create a metadata exporter."};
inline constexpr ExitStatus failedToInitializeMetadataExporter{
    517, L"Scanner error; Failed to initialize a metadata exporter."};
inline constexpr ExitStatus failedToAddCertificates{518, L"Scanner error; Failed to add certificates to a storage."};
// Packager.
inline constexpr ExitStatus failedToCreatePackager{769, L"Packager error; Failed to create a packager."};
inline constexpr ExitStatus failedToInitializePackager{770, L"Packager error; Failed to initialize a packager."};
inline constexpr ExitStatus failedToCreatePackage{771, L"Packager error; Failed to create a package."};
inline constexpr ExitStatus failedToGetUnresolvedPatches{772, L"Packager error; Failed to get unresolved patches."};
inline constexpr ExitStatus failedToGetAvailablePatches{773, L"Packager error; Failed to get available patches."};
inline constexpr ExitStatus failedToGetDownloadInformation{774, L"Packager error; Failed get download information."};
inline constexpr ExitStatus failedToCallVerificationFunction{
    775, L"Packager error; Failed to call verification function."};
inline constexpr ExitStatus packageCreatedWithUnresolvedPatches{
    776, L"Packager error; Package created with unresolved patches."};
// Deployer.
inline constexpr ExitStatus failedToDeploy{1025, L"Deployer error; Failed to deploy."};

/// All of them, for people who meet a number.
inline constexpr ExitStatus all[] = {success, unknownStatus, badArgument, failedToParse, failedToCreateAction,
    failedToDownload, emptyUrl, resourceNotFound, resourceAlreadyExists, failedToRunIpcServer,
    failedToSendToDataPipeline, resourceNotReady, failedToRunProcess, failedToConnectToMeridia, rebootNeeded,
    applicationCrashed, failedToCreateSynchronizer, failedToGetSynchronizerComponents, failedToGetLocalFileSyncInfo,
    failedToSyncComponent, failedToCheckComponentSignature, failedToBackupDatabaseComponent,
    failedToUpdateDatabaseComponent, failedToClearBackup, failedToCreateScanner, failedToInitializeScanner,
    failedToScanForUpdates, failedToCreateMetadataExporter, failedToInitializeMetadataExporter, failedToAddCertificates,
    failedToCreatePackager, failedToInitializePackager, failedToCreatePackage, failedToGetUnresolvedPatches,
    failedToGetAvailablePatches, failedToGetDownloadInformation, failedToCallVerificationFunction,
    packageCreatedWithUnresolvedPatches, failedToDeploy};

} // namespace exitstatus

} // namespace vx::tarn::common
