#pragma once

#include "vxtl/sync.h"

#include <string>

namespace vx::tarn::common {

/// Tells of changes at one registry key. One thread at a time.
class IRegistryKeyNotifier {
public:
    virtual ~IRegistryKeyNotifier() = default;
    /// Opens the key to watch; `root` is the system's handle of an open or predefined key. False when a key
    /// is open already. Throws Win32Exception.
    virtual bool initialize(void* root, const std::wstring& path, unsigned long access) = 0;
    /// Has the event fire at the next change that the filter, a mask of the system's REG_NOTIFY_ values,
    /// lets pass: once, of the key itself and not of those below. Comes back at once. Throws Win32Exception.
    virtual void notifyChangeKeyValue(unsigned long filter, const IWaitable& event) = 0;
};

} // namespace vx::tarn::common
