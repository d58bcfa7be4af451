#include "flyer-api/flyerlibrary.h"

namespace vx::flyers {

void bindFlyerLibrary(delayload::LateBinder& binder, FlyerLibrary& library)
{
    const delayload::LateLibrary found = binder.load("vx_flyer_api_32.dll");
    found.call("VxFlyerApiDelayLoadInitialize");
    found.bind(library.createFlyer, "VxFlyer_CreateFlyer");
    found.bind(library.addDetails, "VxFlyer_AddDetails");
    found.bind(library.addDropdownMenuItem, "VxFlyer_AddDropdownMenuItem");
    found.bind(library.addButton, "VxFlyer_AddButton");
    found.bind(library.setAction, "VxFlyer_SetAction");
    found.bind(library.showFlyer, "VxFlyer_ShowFlyer");
    found.bind(library.closeFlyer, "VxFlyer_CloseFlyer");
}

} // namespace vx::flyers
