#include "libraries/systemobjects/taskservice.h"

#include "libraries/systemobjects/taskdefinition.h"
#include "libraries/systemobjects/taskfolder.h"
#include "machine/taskpaths.h"

#include <algorithm>

namespace devhost::systemobjects {

HRESULT TaskService::GetFolder(BSTR path, ITaskFolder** folder)
{
    return answer("ITaskService::GetFolder", folder, [&] {
        return m_connected ? openFolder(machine::joinPath({}, toText(path)), folder)
                           : HRESULT_FROM_WIN32(ERROR_ONLY_IF_CONNECTED);
    });
}

HRESULT TaskService::NewTask(DWORD flags, ITaskDefinition** definition)
{
    return answer("ITaskService::NewTask", definition, [&] {
        if (flags != 0)
            return E_INVALIDARG;
        *definition = new TaskDefinition(DefinitionParts());
        return S_OK;
    });
}

HRESULT TaskService::Connect(VARIANT server, VARIANT user, VARIANT domain, VARIANT password)
{
    return answer("ITaskService::Connect", [&] {
        const auto isEmpty = [](const VARIANT& variant) { return V_VT(&variant) == VT_EMPTY; };
        if (!std::ranges::all_of(std::initializer_list<VARIANT>{server, user, domain, password}, isEmpty))
            return HRESULT_FROM_WIN32(ERROR_BAD_NETPATH);
        m_connected = true;
        return S_OK;
    });
}

HRESULT TaskService::get_Connected(VARIANT_BOOL* connected)
{
    return answer("ITaskService::get_Connected", connected, [&] {
        *connected = m_connected ? VARIANT_TRUE : VARIANT_FALSE;
        return S_OK;
    });
}

} // namespace devhost::systemobjects
