#include "common/windowsupdates/comobject.h"

#include <oaidl.h>
#include <ole2.h>
#include <oleauto.h>

namespace vx::tarn::common {

namespace {

constexpr DWORD anyServer = CLSCTX_INPROC_SERVER | CLSCTX_INPROC_HANDLER | CLSCTX_LOCAL_SERVER | CLSCTX_REMOTE_SERVER;

/// Whether an error object that the thread has is about this interface; else it is a left-over of an earlier call.
bool leavesErrors(IUnknown& object, REFIID interfaceId)
{
    com::ComPtr<ISupportErrorInfo> support;
    return SUCCEEDED(object.QueryInterface(__uuidof(ISupportErrorInfo), reinterpret_cast<void**>(support.put()))) &&
           support && support->InterfaceSupportsErrorInfo(interfaceId) == S_OK;
}

} // namespace

HRESULT details::createComObject(REFCLSID classId, REFIID interfaceId, void** object)
{
    com::ComPtr<IUnknown> created;
    HRESULT result =
        CoCreateInstance(classId, nullptr, anyServer, __uuidof(IUnknown), reinterpret_cast<void**>(created.put()));
    // Given no object, OleRun ends the process.
    if (FAILED(result) || !created)
        return result;
    result = OleRun(created.get());
    if (SUCCEEDED(result))
        result = created->QueryInterface(interfaceId, object);
    if (FAILED(result))
        *object = nullptr;
    return result;
}

ComError comErrorOf(HRESULT result, IUnknown& object, REFIID interfaceId)
{
    com::ComPtr<IErrorInfo> info;
    if (leavesErrors(object, interfaceId))
        GetErrorInfo(0, info.put());
    return ComError(result, info.get());
}

} // namespace vx::tarn::common
