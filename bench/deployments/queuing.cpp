#include "common/deploymentqueue/deploymentqueue.h"
#include "inputs.h"
#include "rows.h"
#include "textstore.h"
#include "vxtl/globalmutex.h"

#include <mutex>
#include <nlohmann/json.hpp>

using nlohmann::json;

namespace {

const std::wstring queueKey = vx::tarn::TarnpatchSettings(nullptr).installation.deploymentQueue.key();

} // namespace

void compareQueuing(bench::Comparison& table)
{
    const auto store = std::make_shared<TextStore>();
    const auto mutex =
        std::make_shared<vx::sync::GlobalMutex>(L"TARN - BENCH - {0E2E9E32-6B0F-4A5F-8F5B-9A3B5C3C1D11}");
    const auto queue =
        std::make_shared<vx::tarn::common::DeploymentQueue>(std::make_shared<vx::settings::Settings>(store), mutex);
    for (const std::size_t count : {1u, 10u, 100u}) {
        const std::string before = queuedIds(count).dump();
        const auto after = std::make_shared<json>(queuedIds(count + 1));
        // Both sides begin each push with the same list.
        const auto floor = bench::perCall(500, [store, mutex, before, after] {
            store->text(queueKey) = before;
            const std::lock_guard lock(*mutex);
            const json list = store->getJsonValue(queueKey);
            store->setJsonValue(queueKey, *after);
        });
        const auto ours = bench::perCall(500, [store, queue, before] {
            store->text(queueKey) = before;
            queue->pushBack(L"CRITICAL");
        });
        table.row("push to a queue of " + std::to_string(count), floor, ours, bench::Reach::timeUpTo(1.3));
        ours();
        if (store->getJsonValue(queueKey).size() != count + 1)
            table.note("the queue does not hold what was pushed", false);
    }
}
