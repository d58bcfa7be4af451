#include "common/patchstorage/patchregistrystorage.h"

#include "common/patchstorage/patchstorageplace.h"
#include "common/utils/jsonvalue.h"
#include "common/utils/number.h"
#include "logging/logstream.h"
#include "vxtl/exception.h"
#include "vxtl/guarded.h"
#include "vxtl/parsejson.h"
#include "vxtl/registry.h"
#include "vxtl/str.h"

#include <nlohmann/json.hpp>

namespace vx::tarn::common {

namespace {

using logging::Level;
using logging::LogStream;
using nlohmann::json;

constexpr unsigned long allAccess = 0xf003f;

json readJson(registry::RegistryKey& key, const std::wstring& name)
{
    return parseJson(str::toUtf8(key.getStringValue(name)));
}

void writeJson(registry::RegistryKey& key, const std::wstring& name, const json& value)
{
    key.setStringValue(name, str::fromUtf8(value.dump()));
}

void readPatches(const json& stored, PatchMap& patches)
{
    for (const auto& [name, value] : utils::objectIn(stored)) {
        const std::int64_t number = utils::toInt64(str::fromUtf8(name));
        patches.insert_or_assign(number, PatchInfo(fromJson<MissingUpdate>(value)));
    }
}

std::vector<ReportEvent> readEvents(const json& stored)
{
    std::vector<ReportEvent> events;
    for (const json& event : utils::arrayIn(stored))
        events.push_back(reportEventFromJson(event));
    return events;
}

} // namespace

PatchRegistryStorage::PatchRegistryStorage(std::wstring finishedValueName, std::wstring patchesValueName,
    std::wstring statusesValueName, std::shared_ptr<registry::Registry> registry)
    : m_finishedValueName(std::move(finishedValueName)), m_patchesValueName(std::move(patchesValueName)),
      m_statusesValueName(std::move(statusesValueName)), m_registry(std::move(registry))
{}

registry::RegistryKey& PatchRegistryStorage::key()
{
    if (!m_key)
        m_key = m_registry->doesKeyExist(patchStorageKey) ? m_registry->openKey(patchStorageKey, allAccess)
                                                          : m_registry->createKey(patchStorageKey, allAccess);
    return *m_key;
}

bool PatchRegistryStorage::clear()
{
    VX_LOG_SCOPE();
    return guardedAgainst<BaseException>("Failed to clear a patch registry storage. Caught exception: ", [&] {
        for (const std::wstring& name : {m_patchesValueName, m_statusesValueName, m_finishedValueName})
            if (key().doesValueExist(name))
                key().deleteValue(name);
        return true;
    });
}

bool PatchRegistryStorage::savePatches(const PatchMap& patches)
{
    VX_LOG_SCOPE();
    return guardedAgainst<BaseException>("Failed to save patches to a patch registry storage. Caught exception: ", [&] {
        if (!clear()) {
            LogStream(Level::Error)
                << "Failed to clear a patch registry storage. Patches information will not be saved.";
            return false;
        }
        json object = json::object();
        for (const auto& [number, patch] : patches)
            object[std::to_string(number)] = toJson(toMissingUpdate(patch));
        writeJson(key(), m_patchesValueName, object);
        return true;
    });
}

bool PatchRegistryStorage::loadPatches(PatchMap& patches, std::vector<ReportEvent>& statuses)
{
    VX_LOG_SCOPE();
    // The words are those of saving.
    return guardedAgainst<BaseException>("Failed to save patches to a patch registry storage. Caught exception: ", [&] {
        if (!key().doesValueExist(m_patchesValueName) || !key().doesValueExist(m_statusesValueName)) {
            LogStream(Level::Warning) << "Failed to load patches. Either \"" << m_patchesValueName << "\" or \""
                                      << m_statusesValueName << "\" doesn't exist";
            return false;
        }
        return guardedAgainst<json::exception>("Failed to parse json. Caught exception: ", [&] {
            readPatches(readJson(key(), m_patchesValueName), patches);
            statuses = readEvents(readJson(key(), m_statusesValueName));
        });
    });
}

bool PatchRegistryStorage::addPatchState(const ReportEvent& event)
{
    VX_LOG_SCOPE();
    return guardedAgainst<BaseException>(
        "Failed to add patch state to a patch registry storage. Caught exception: ", [&] {
            json events = json::array();
            if (key().doesValueExist(m_statusesValueName)) {
                json stored = readJson(key(), m_statusesValueName);
                if (stored.is_array())
                    events = std::move(stored);
                else
                    LogStream(Level::Warning)
                        << "Wrong value is in patch registry storage in statuses node. Will be used "
                           "default empty value.";
            }
            events.push_back(toJson(event));
            writeJson(key(), m_statusesValueName, events);
            return true;
        });
}

bool PatchRegistryStorage::reportInstallationFinished(bool finished)
{
    VX_LOG_SCOPE();
    return guardedAgainst<BaseException>(
        "Failed to add patch state to a patch registry storage. Caught exception: ", [&] {
            key().setInt32Value(m_finishedValueName, finished ? 1 : 0);
            return true;
        });
}

bool PatchRegistryStorage::isInstallationFinished()
{
    return guardedAgainst<BaseException>("Failed to check if installation finished. Caught exception: ",
        [&] { return key().doesValueExist(m_finishedValueName) && key().getInt32Value(m_finishedValueName) == 1; });
}

bool PatchRegistryStorage::hasPatchStates()
{
    return guardedAgainst<BaseException>("Failed to check if installation finished. Caught exception: ",
        [&] { return key().doesValueExist(m_statusesValueName); });
}

} // namespace vx::tarn::common
