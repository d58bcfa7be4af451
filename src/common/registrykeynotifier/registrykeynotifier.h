#pragma once

#include "common/registrykeynotifier/iregistrykeynotifier.h"
#include "vxtl/registrykeyhandle.h"

#include <memory>

namespace vx::tarn::common {

/// Watches a key of the system's registry; owns the open key.
class RegistryKeyNotifier : public IRegistryKeyNotifier {
public:
    bool initialize(void* root, const std::wstring& path, unsigned long access) override;
    void notifyChangeKeyValue(unsigned long filter, const IWaitable& event) override;

private:
    std::unique_ptr<registry::RegistryKeyHandle> m_key;
};

} // namespace vx::tarn::common
