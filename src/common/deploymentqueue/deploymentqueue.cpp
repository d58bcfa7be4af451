#include "common/deploymentqueue/deploymentqueue.h"

#include "common/patches/patchrecords.h"
#include "logging/logstream.h"
#include "vxtl/clock.h"
#include "vxtl/exception.h"
#include "vxtl/globalmutex.h"
#include "vxtl/guarded.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

namespace vx::tarn::common {

namespace {

using logging::Level;
using logging::LogStream;
using Items = std::vector<DeploymentItem>;

// Nobody tells when the last write of a dead process has been carried out. Late ones were seen before the first of
// these reads, one behind the third; the others are for luck that is worse, and cost little as seldom as somebody dies.
constexpr unsigned quietReads = 20;
constexpr unsigned mostReads = 100;

Items itemsOf(const nlohmann::json& list)
{
    return listFromJson<DeploymentItem>(list);
}

void requireItem(bool found)
{
    if (!found)
        VX_THROW(BaseException, L"Deployment queue is empty");
}

auto withText(const std::wstring& updateId)
{
    return [&updateId](const DeploymentItem& item) { return item.descriptor == updateId; };
}

auto sameAs(const DeploymentItem& other)
{
    return [&other](const DeploymentItem& item) {
        return item.operationId == other.operationId && item.descriptor == other.descriptor;
    };
}

/// Takes the first such item out of the list; false when there is none.
template <typename Predicate>
bool takeOut(nlohmann::json& list, Items items, Predicate isMeant)
{
    const auto found = std::ranges::find_if(items, isMeant);
    if (found == items.end())
        return false;
    items.erase(found);
    list = listToJson(items);
    return true;
}

std::wstring operationIdNow()
{
    return std::to_wstring(systemTicks() / ticksPerMillisecond);
}

} // namespace

DeploymentQueue::DeploymentQueue(
    std::shared_ptr<settings::Settings> settingsHandle, std::shared_ptr<sync::GlobalMutex> mutex)
    : m_settingsHandle(std::move(settingsHandle)), m_mutex(std::move(mutex)), m_settings(m_settingsHandle)
{}

void DeploymentQueue::change(const Change& apply)
{
    if (m_mutex->lock() == sync::PreviousOwner::Died)
        m_isUnsettled = true;
    const std::lock_guard lock(*m_mutex, std::adopt_lock);
    nlohmann::json list = m_settings.installation.deploymentQueue();
    if (apply(list))
        m_settings.installation.deploymentQueue.set(list);
    // The operation has had its effect by now, so a failure of this is none of its own; the next one settles then.
    if (m_isUnsettled && guarded("Failed to settle the deployment queue: ", [&] { settle(std::move(list), apply); }))
        m_isUnsettled = false;
}

void DeploymentQueue::settle(nlohmann::json list, const Change& apply)
{
    LogStream(Level::Warning) << "A process died while it held the deployment queue.";
    unsigned quiet = 0;
    for (unsigned reads = 0; quiet < quietReads && reads < mostReads && !m_mutex->isStopped(); ++reads, ++quiet) {
        nlohmann::json found = m_settings.installation.deploymentQueue();
        if (found == list)
            continue;
        LogStream(Level::Warning) << "Its change of the deployment queue came late, the own one is made again.";
        quiet = 0;
        list = std::move(found);
        if (apply(list))
            m_settings.installation.deploymentQueue.set(list);
    }
}

bool DeploymentQueue::isEmpty()
{
    VX_LOG_SCOPE();
    bool empty = true;
    guardedAgainst<std::exception>(Level::Warning, [&] {
        change([&](const nlohmann::json& list) {
            empty = itemsOf(list).empty();
            return false;
        });
    });
    return empty;
}

void DeploymentQueue::pushBack(const std::wstring& updateId)
{
    VX_LOG_SCOPE();
    VX_LOG_VALUES(updateId);
    guardedAgainst<BaseException>([&] {
        std::optional<DeploymentItem> pushed;
        change([&](nlohmann::json& list) {
            bool isQueued = false;
            std::vector<std::pair<nlohmann::json*, DeploymentItem>> foreign; // not in the form that is written here
            readEach<DeploymentItem>(list, [&](DeploymentItem& item, nlohmann::json& element, bool isAsWritten) {
                isQueued |= item.descriptor == updateId;
                if (!isAsWritten)
                    foreign.emplace_back(&element, std::move(item));
            });
            if (isQueued) {
                if (!pushed)
                    LogStream(Level::Warning) << "Deployment item \"" << updateId
                                              << "\" already exists in the deployment queue, will be skipped.";
                return false;
            }
            if (!pushed)
                pushed = {operationIdNow(), updateId};
            for (const auto& [element, item] : foreign)
                *element = toJson(item);
            list.push_back(toJson(*pushed));
            return true;
        });
    });
}

std::wstring DeploymentQueue::getFront()
{
    VX_LOG_SCOPE();
    std::wstring front;
    guardedAgainst<std::exception>([&] {
        Items items;
        change([&](const nlohmann::json& list) {
            items = itemsOf(list);
            return false;
        });
        requireItem(!items.empty());
        front = std::move(items.front().descriptor);
    });
    return front;
}

void DeploymentQueue::pop()
{
    VX_LOG_SCOPE();
    guardedAgainst<std::exception>([&] {
        std::optional<DeploymentItem> popped;
        change([&](nlohmann::json& list) {
            Items items = itemsOf(list);
            // The item, not the place: whoever popped it looked at it before.
            if (!popped && !items.empty())
                popped = items.front();
            return popped && takeOut(list, std::move(items), sameAs(*popped));
        });
        requireItem(popped.has_value());
    });
}

bool DeploymentQueue::remove(const std::wstring& updateId)
{
    VX_LOG_SCOPE();
    return guardedAgainst<std::exception>([&] {
        bool removed = false;
        change([&](nlohmann::json& list) {
            const bool found = takeOut(list, itemsOf(list), withText(updateId));
            removed |= found;
            return found;
        });
        return removed;
    });
}

} // namespace vx::tarn::common
