#pragma once

#include "service/serviceentry.h"
#include "service/stoptime.h"
#include "vxtl/enumtext.h"
#include "vxtl/service.h"

#include <filesystem>
#include <memory>

namespace vx::registry {
class RegistryKey;
}

namespace devhost::service {

inline constexpr wchar_t serviceName[] = L"wuauserv";

/// Who plays the Windows Update service.
enum class Player { System, StandIn, Nobody };

inline constexpr auto playerTexts =
    vx::enumTexts<Player>({{Player::System, "system"}, {Player::StandIn, "stand-in"}, {Player::Nobody, "nobody"}});
constexpr vx::EnumTexts textsOf(Player)
{
    return {"Player", playerTexts};
}

/// The Windows Update service of this machine, in whose place a stand-in is put. What the system had there is kept in
/// the registry until it is given back. Each operation brings about what it is named for whatever it finds, also after
/// one that was interrupted. They block until the service has followed, at most a minute, and throw Win32Exception, or
/// std::runtime_error when the service does not follow. One caller on the machine at a time.
class UpdateService {
public:
    /// `program`: the stand-in, wuservice.exe; the file may have any place.
    explicit UpdateService(std::filesystem::path program);

    /// The stand-in runs, and will answer a stop like this.
    void run(const StopTime& stop);
    /// The stand-in is there and stopped; also one that refuses that to others or takes its time.
    void stop();
    /// There is no such service.
    void remove();
    /// The system's own is there again, stopped, or none if there was none. Throws std::runtime_error when nobody has
    /// kept what it was.
    void giveBack();

    Player player() const;
    /// Stopped for one that is not there.
    vx::ServiceState state() const;

private:
    ServiceEntry::Configuration standIn() const;
    void takeOver();
    void keepOriginal();
    void putOriginalBack();
    void start();
    void halt();

    const std::filesystem::path m_program;
    const std::shared_ptr<vx::registry::RegistryKey> m_registry; ///< of the machine
    ServiceEntry m_entry{serviceName};
    vx::Service m_service{serviceName};
};

} // namespace devhost::service
