#include "common/registrykeynotifier/registrykeynotifier.h"

#include "vxtl/win32exception.h"

#include <windows.h>

namespace vx::tarn::common {

bool RegistryKeyNotifier::initialize(void* root, const std::wstring& path, unsigned long access)
{
    VX_LOG_SCOPE();
    VX_LOG_VALUES(path);
    if (m_key)
        return false;
    HKEY key = nullptr;
    VX_CHECK_WIN32(RegOpenKeyExW(static_cast<HKEY>(root), path.c_str(), 0, access, &key));
    m_key = std::make_unique<registry::RegistryKeyHandle>(key);
    return true;
}

void RegistryKeyNotifier::notifyChangeKeyValue(unsigned long filter, const IWaitable& event)
{
    auto* key = m_key ? static_cast<HKEY>(m_key->get()) : nullptr;
    VX_CHECK_WIN32(RegNotifyChangeKeyValue(key, FALSE, filter, event.getHandle(), TRUE));
}

} // namespace vx::tarn::common
