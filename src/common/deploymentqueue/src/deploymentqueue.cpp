#include "common/deploymentqueue.h"

#include "common/patchrecords.h"
#include "logging/logstream.h"
#include "vxtl/clock.h"
#include "vxtl/exception.h"
#include "vxtl/globalmutex.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <mutex>

namespace vx::tarn::common {

namespace {

using logging::Level;
using logging::LogStream;
using Items = std::vector<DeploymentItem>;

Items readItems(const TarnpatchSettings& settings)
{
    return listFromJson<DeploymentItem>(settings.installation.deploymentQueue());
}

void writeItems(const TarnpatchSettings& settings, const Items& items)
{
    settings.installation.setDeploymentQueue(listToJson(items));
}

void requireItems(const Items& items)
{
    if (items.empty())
        VX_THROW(BaseException, L"Deployment queue is empty");
}

Items::const_iterator find(const Items& items, const std::wstring& updateId)
{
    return std::find_if(
        items.begin(), items.end(), [&](const DeploymentItem& item) { return item.updateId == updateId; });
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

bool DeploymentQueue::isEmpty()
{
    VX_LOG_SCOPE();
    try {
        const std::lock_guard lock(*m_mutex);
        return readItems(m_settings).empty();
    } catch (const std::exception& e) {
        LogStream(Level::Warning) << e;
        return true;
    }
}

void DeploymentQueue::pushBack(const std::wstring& updateId)
{
    VX_LOG_SCOPE();
    VX_LOG_VALUES(updateId);
    try {
        const std::lock_guard lock(*m_mutex);
        nlohmann::json list = m_settings.installation.deploymentQueue();
        Items items;
        bool areAsWritten = true;
        readEach<DeploymentItem>(list, [&](DeploymentItem& item, nlohmann::json&, bool isAsWritten) {
            items.push_back(std::move(item));
            areAsWritten &= isAsWritten;
        });
        if (find(items, updateId) != items.end()) {
            LogStream(Level::Warning) << "Deployment item \"" << updateId
                                      << "\" already exists in the deployment queue, will be skipped.";
            return;
        }
        if (!areAsWritten)
            list = listToJson(items);
        list.push_back(toJson(DeploymentItem{operationIdNow(), updateId}));
        m_settings.installation.setDeploymentQueue(list);
    } catch (const BaseException& e) {
        LogStream(Level::Error) << e;
    }
}

std::wstring DeploymentQueue::getFront()
{
    VX_LOG_SCOPE();
    try {
        const std::lock_guard lock(*m_mutex);
        const Items items = readItems(m_settings);
        requireItems(items);
        return items.front().updateId;
    } catch (const std::exception& e) {
        LogStream(Level::Error) << e;
        return {};
    }
}

void DeploymentQueue::pop()
{
    VX_LOG_SCOPE();
    try {
        const std::lock_guard lock(*m_mutex);
        Items items = readItems(m_settings);
        requireItems(items);
        items.erase(items.begin());
        writeItems(m_settings, items);
    } catch (const std::exception& e) {
        LogStream(Level::Error) << e;
    }
}

bool DeploymentQueue::remove(const std::wstring& updateId)
{
    VX_LOG_SCOPE();
    try {
        const std::lock_guard lock(*m_mutex);
        Items items = readItems(m_settings);
        const auto found = find(items, updateId);
        if (found == items.end())
            return false;
        items.erase(found);
        writeItems(m_settings, items);
        return true;
    } catch (const std::exception& e) {
        LogStream(Level::Error) << e;
        return false;
    }
}

} // namespace vx::tarn::common
