#pragma once

#include "common/ideploymentqueue.h"
#include "common/tarnpatchsettings.h"

#include <memory>

namespace vx::settings {
class Settings;
}
namespace vx::sync {
class GlobalMutex;
}

namespace vx::tarn::common {

/// The queue in the store. Keeps nothing in memory: each operation holds the mutex, waiting for it without
/// a limit, while it reads the whole list, changes it and writes it back.
class DeploymentQueue : public IDeploymentQueue {
public:
    DeploymentQueue(std::shared_ptr<settings::Settings> settingsHandle, std::shared_ptr<sync::GlobalMutex> mutex);

    bool isEmpty() override;
    void pushBack(const std::wstring& updateId) override;
    std::wstring getFront() override;
    void pop() override;
    bool remove(const std::wstring& updateId) override;

private:
    std::shared_ptr<settings::Settings> m_settingsHandle;
    std::shared_ptr<sync::GlobalMutex> m_mutex;
    TarnpatchSettings m_settings;
};

} // namespace vx::tarn::common
