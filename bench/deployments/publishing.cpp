#include "inputs.h"
#include "rows.h"
#include "tarnhd/currentoperations/currentoperations.h"
#include "textstore.h"

#include <nlohmann/json.hpp>

using nlohmann::json;

namespace {

const vx::tarn::TarnpatchSettings keys{nullptr};
const vx::tarn::TarnpatchStatus statusKeys{nullptr};
const std::wstring queueKey = keys.installation.deploymentQueue.key();
const std::wstring missingKey = statusKeys.scanning.lastScanning.missingUpdates.key();
const std::wstring logKey = statusKeys.installation.log.entries.key();
const std::wstring resultKey = keys.currentStatus.patchesToInstall.key();

struct Size {
    std::size_t patches;
    std::size_t entries;
    std::size_t filters;
    std::size_t calls; ///< in one repeat
};

std::string nameOf(const Size& size)
{
    return std::to_string(size.patches) + " x " + std::to_string(size.entries) + " x " + std::to_string(size.filters);
}

/// A store with the inputs of one size and the result of a first pass.
class Deployment {
public:
    explicit Deployment(const Size& size) : m_calls(size.calls)
    {
        m_store->setJsonValue(queueKey, requests(size.filters));
        m_store->setJsonValue(missingKey, missingUpdates(size.patches));
        m_store->setJsonValue(logKey, logEntries(size.entries));
        m_operations->update();
        m_result = std::make_shared<json>(m_store->getJsonValue(resultKey));
    }

    std::size_t published() const { return m_result->size(); }

    bench::Measure pass() const
    {
        return bench::perCall(m_calls, [operations = m_operations] { operations->update(); });
    }

    bench::Measure parseAndDump() const
    {
        return bench::perCall(m_calls, [store = m_store, result = m_result] {
            const json queue = json::parse(store->text(queueKey));
            const json missing = json::parse(store->text(missingKey));
            const json log = json::parse(store->text(logKey));
            bench::keep(result->dump());
        });
    }

private:
    std::size_t m_calls;
    std::shared_ptr<TextStore> m_store = std::make_shared<TextStore>();
    std::shared_ptr<vx::tarn::CurrentOperations> m_operations =
        std::make_shared<vx::tarn::CurrentOperations>(std::make_shared<vx::settings::Settings>(m_store));
    std::shared_ptr<json> m_result;
};

bench::Measure tenTimes(bench::Measure once)
{
    return [once] { return 10 * once(); };
}

} // namespace

void comparePublishing(bench::Comparison& table)
{
    const Size sizes[] = {{50, 200, 1, 100}, {1000, 1000, 10, 10}, {10000, 10000, 10, 1}};
    for (const Size& size : sizes) {
        const Deployment deployment(size);
        table.row("pass, " + nameOf(size) + ", " + std::to_string(deployment.published()) + " published",
            deployment.parseAndDump(), deployment.pass(), bench::Reach::timeUpTo(1.4));
    }
    // A cost by the product of patches and entries would be ten times as high.
    table.row("pass, " + nameOf(sizes[2]) + ", beside ten of a tenth", tenTimes(Deployment(sizes[1]).pass()),
        Deployment(sizes[2]).pass(), bench::Reach::timeUpTo(1.6));
}
