#include "service/updateservice.h"

#include "vxtl/clock.h"
#include "vxtl/guarded.h"
#include "vxtl/registry.h"
#include "vxtl/registrykeyhandle.h"
#include "vxtl/win32exception.h"

#include <windows.h>

#include <stdexcept>

namespace devhost::service {

namespace {

using vx::ServiceState;

// All below HKEY_LOCAL_MACHINE.
const std::wstring serviceKey = std::wstring(L"SYSTEM\\CurrentControlSet\\Services\\") + serviceName;
/// A copy of that; an empty one when the system had no such service.
const std::wstring originalKey = std::wstring(keptKeyPath) + L"\\Original";

vx::registry::RegistryKeyHandle open(const std::wstring& key, REGSAM access)
{
    HKEY handle = nullptr;
    VX_CHECK_WIN32(RegOpenKeyExW(HKEY_LOCAL_MACHINE, key.c_str(), 0, access, &handle));
    return vx::registry::RegistryKeyHandle(handle);
}

/// Values and all below, into a key that is there.
void copyTree(const std::wstring& from, const std::wstring& to)
{
    const auto source = open(from, KEY_READ), target = open(to, KEY_ALL_ACCESS);
    VX_CHECK_WIN32(RegCopyTreeW(static_cast<HKEY>(source.get()), nullptr, static_cast<HKEY>(target.get())));
}

/// Polls, as the service manager tells nobody of changes.
void waitUntil(const std::function<bool()>& condition)
{
    const auto begin = vx::uptime();
    while (!condition()) {
        if (vx::uptime() - begin >= std::chrono::minutes(1))
            throw std::runtime_error("the service wuauserv does not follow");
        Sleep(10);
    }
}

/// False while the system still starts services of its own and takes no other.
bool tryToStart(vx::Service& service)
{
    try {
        service.beginStart();
    } catch (const vx::Win32Exception& e) {
        if (e.code() == ERROR_SERVICE_REQUEST_TIMEOUT || e.code() == ERROR_SERVICE_DATABASE_LOCKED)
            return false;
        if (e.code() != ERROR_SERVICE_ALREADY_RUNNING)
            throw;
    }
    return true;
}

} // namespace

UpdateService::UpdateService(std::filesystem::path program)
    : m_program(std::move(program)), m_registry(vx::registry::createWin32Registry()->localMachine())
{}

void UpdateService::run(const StopTime& stop)
{
    takeOver();
    if (state() != ServiceState::Running)
        halt();
    writeStopTime(stop);
    start();
    // Whoever keeps the service stopped may have been faster.
    waitUntil([&] { return state() != ServiceState::Running || m_entry.acceptsStop() == stop.has_value(); });
}

void UpdateService::stop()
{
    takeOver();
    halt();
}

void UpdateService::remove()
{
    if (player() == Player::Nobody)
        return;
    stop();
    m_entry.remove();
    waitUntil([this] { return !m_entry.exists(); });
}

void UpdateService::giveBack()
{
    if (m_registry->doesKeyExist(originalKey))
        putOriginalBack();
    else if (player() == Player::StandIn)
        throw std::runtime_error("nobody knows any more what stood in the place of the stand-in for wuauserv");
    if (m_registry->doesKeyExist(keptKeyPath))
        m_registry->deleteTree(keptKeyPath);
}

Player UpdateService::player() const
{
    if (!m_entry.exists())
        return Player::Nobody;
    // Also the program of another build.
    const auto end = L'\\' + m_program.filename().native() + L'"';
    return m_entry.commandLine().ends_with(end) ? Player::StandIn : Player::System;
}

ServiceState UpdateService::state() const
{
    return m_entry.exists() ? m_service.getState() : ServiceState::Stopped;
}

ServiceEntry::Configuration UpdateService::standIn() const
{
    return {L'"' + m_program.native() + L'"', SERVICE_WIN32_OWN_PROCESS, SERVICE_DEMAND_START};
}

// What was there is kept before anything is changed. Where the system's own stands there is nothing kept of worth:
// at most what an operation has left that was interrupted before its change or after it was undone.
void UpdateService::takeOver()
{
    const auto before = player();
    if (before == Player::System || (before == Player::Nobody && !m_registry->doesKeyExist(originalKey)))
        keepOriginal();
    if (before == Player::Nobody)
        m_entry.create(standIn());
    else if (m_entry.commandLine() != standIn().commandLine) {
        halt();
        m_entry.change(standIn());
    }
}

void UpdateService::keepOriginal()
{
    if (m_registry->doesKeyExist(originalKey))
        m_registry->deleteTree(originalKey);
    m_registry->createKey(originalKey);
    if (player() == Player::System)
        copyTree(serviceKey, originalKey);
}

void UpdateService::putOriginalBack()
{
    const auto original = m_registry->openKey(originalKey);
    const bool wasThere = original->doesValueExist(L"ImagePath");
    // The stand-in first: what is the system's own counts as whole.
    if (wasThere && player() == Player::Nobody)
        m_entry.create(standIn());
    if (player() != Player::StandIn)
        return;
    halt();
    if (!wasThere)
        return m_entry.remove();
    copyTree(originalKey, serviceKey);
    m_entry.change({original->getStringValue(L"ImagePath"), static_cast<DWORD>(original->getInt32Value(L"Type")),
        static_cast<DWORD>(original->getInt32Value(L"Start"))});
}

void UpdateService::start()
{
    waitUntil([this] { return tryToStart(m_service); });
    waitUntil([this] { return state() != ServiceState::StartPending; });
}

void UpdateService::halt()
{
    // The stand-in obeys this at once, whatever it does.
    if (player() == Player::StandIn)
        writeStopTime(std::chrono::seconds(0));
    waitUntil([this] {
        // Others may stop it, too: what became of this the next look tells.
        if (state() == ServiceState::Running && m_entry.acceptsStop())
            vx::guardedAgainst<vx::Win32Exception>([this] { m_service.beginStop(); });
        return state() == ServiceState::Stopped;
    });
}

} // namespace devhost::service
