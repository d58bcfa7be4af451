// The functions of the library as its callers bind them: cdecl, plain names, texts in UTF-8. No exception leaves them:
// each becomes an error code.

#include "ipc/instance.h"
#include "libraries/plannedcode.h"
#include "records/recordfile.h"
#include "vxtl/parsejson.h"

#include <nlohmann/json.hpp>

namespace {

enum Code { success = 0, failed = 1, invalidParameter = 2 };

int record(const char* alertType, const char* alertData) noexcept
{
    if (!alertType || !alertData)
        return invalidParameter;
    try {
        devhost::records::RecordFile(devhost::ipc::instanceFromEnvironment(), devhost::records::alerts)
            .append({{"type", alertType}, {"data", vx::parseJson(alertData)}});
        return success;
    } catch (const nlohmann::json::exception&) {
        return invalidParameter;
    } catch (...) {
        return failed;
    }
}

} // namespace

extern "C" {

int VxAlertApi_DelayLoadInitialize()
{
    return success;
}

/// The data have to be JSON.
int VxAlertApi_SendAlert(const char* alertType, const char* alertData)
{
    const auto planned = devhost::plannedCode("VxAlertApi::SendAlert");
    return planned ? *planned : record(alertType, alertData);
}

const wchar_t* VxAlertApi_ErrorAsString(int code)
{
    switch (code) {
    case success: return L"The alert was recorded";
    case failed: return L"The alert could not be recorded";
    case invalidParameter: return L"The alert has no type, or data that are no JSON";
    default: return L"A failure that was planned";
    }
}

} // extern "C"
