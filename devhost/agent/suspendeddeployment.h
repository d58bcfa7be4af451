#pragma once

#include "common/patchstorage/ipatchstorage.h"
#include "common/settings/settingsenumerations.h"

#include <functional>
#include <memory>
#include <vector>

namespace vx::settings {
class Settings;
}

namespace devhost::agent {

/// A deployment that a reboot cuts in two: what lies in the patch storage between the halves. One thread. Throws
/// std::runtime_error when the storage cannot be used.
class SuspendedDeployment {
public:
    explicit SuspendedDeployment(std::shared_ptr<vx::tarn::common::IPatchStorage> storage)
        : m_storage(std::move(storage))
    {}

    /// Before the reboot: keeps the patches and reports that they, in this state, wait for it.
    void suspend(const std::vector<vx::tarn::common::PatchInfo>& patches, vx::tarn::ValueItem state) const;
    /// At the next boot: reports each patch and the whole as finished. False when no deployment waits for that.
    bool finish() const;
    /// After that: puts the patches into the states that were reported last, and forgets them. False when nothing
    /// is kept. `makeSettings` is called when there is something to write.
    bool complete(const std::function<std::shared_ptr<vx::settings::Settings>()>& makeSettings) const;

private:
    /// What a deployment that waits for a boot has left in the registry.
    struct Kept {
        vx::tarn::common::PatchMap patches;
        std::vector<vx::tarn::common::ReportEvent> events;
    };

    Kept load() const;
    void report(const vx::tarn::common::ReportEvent& event) const;

    std::shared_ptr<vx::tarn::common::IPatchStorage> m_storage;
};

} // namespace devhost::agent
