#include "meridia-settings/qrlmeridiaapi.h"

namespace vx::meridia {

void bindQrlMeridiaApi(delayload::LateBinder& binder, QrlMeridiaApi& api)
{
    const delayload::LateLibrary library = binder.load("vx_qrl_meridia_32.dll");
    library.call("QrlMeridia_DelayLoadInitialize");
    library.bind(api.openHandle, "QrlMeridia_OpenHandle");
    library.bind(api.closeHandle, "QrlMeridia_CloseHandle");
    library.bind(api.getBool, "QrlMeridia_GetBool");
    library.bind(api.getInt32, "QrlMeridia_GetInt32");
    library.bind(api.getInt64, "QrlMeridia_GetInt64");
    library.bind(api.getString, "QrlMeridia_GetString");
    library.bind(api.getObjectAsStringUtf8, "QrlMeridia_GetObjectAsStringUtf8");
    library.bind(api.freeString, "QrlMeridia_FreeString");
    library.bind(api.setBool, "QrlMeridia_SetBool");
    library.bind(api.setInt32, "QrlMeridia_SetInt32");
    library.bind(api.setInt64, "QrlMeridia_SetInt64");
    library.bind(api.setString, "QrlMeridia_SetString");
    library.bind(api.setObjectFromStringUtf8, "QrlMeridia_SetObjectFromStringUtf8");
    library.bind(api.subscribe, "QrlMeridia_Subscribe");
    library.bind(api.unsubscribe, "QrlMeridia_Unsubscribe");
}

} // namespace vx::meridia
