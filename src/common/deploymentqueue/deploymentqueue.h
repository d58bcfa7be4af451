#pragma once

#include "common/deploymentqueue/ideploymentqueue.h"
#include "common/settings/tarnpatchsettings.h"

#include <functional>
#include <memory>
#include <nlohmann/json_fwd.hpp>

namespace vx::settings {
class Settings;
}
namespace vx::sync {
class GlobalMutex;
}

namespace vx::tarn::common {

/// The queue in the store. Keeps nothing in memory: each operation holds the mutex, waiting for it without a limit or
/// until the mutex's stop event, while it reads the whole list, changes it and writes it back.
///
/// A process that dies in an operation may have left a write to the store, which knows of no mutex and may carry it out
/// later. So the next operation of any process reads back what it has written, or read, and is carried out again on a
/// list that has changed meanwhile.
class DeploymentQueue : public IDeploymentQueue {
public:
    DeploymentQueue(std::shared_ptr<settings::Settings> settingsHandle, std::shared_ptr<sync::GlobalMutex> mutex);

    bool isEmpty() override;
    void pushBack(const std::wstring& updateId) override;
    std::wstring getFront() override;
    void pop() override;
    bool remove(const std::wstring& updateId) override;

private:
    /// Changes the list in place; false when it is to stay. Called again when another list has come in between.
    using Change = std::function<bool(nlohmann::json& list)>;

    void change(const Change& apply);
    void settle(nlohmann::json list, const Change& apply);

    std::shared_ptr<settings::Settings> m_settingsHandle;
    std::shared_ptr<sync::GlobalMutex> m_mutex;
    TarnpatchSettings m_settings;
    bool m_isUnsettled = false; ///< a process died in an operation, and its write may be to come; guarded by m_mutex
};

} // namespace vx::tarn::common
