#pragma once

#include <cstdint>
#include <string>

namespace vx::tarn::common {

/// A proxy, as it is read out of a setting's text. A plain value; holds the password as it stands there.
struct ProxyInfo {
    enum class Passwords { Shown, Hidden };

    std::wstring protocol = L"http";
    std::uint16_t port = 8080;
    std::wstring host;
    std::wstring user;
    std::wstring password;
    bool isHostDoubtful = false; ///< an @ comes later: host and port may be pieces of the password

    /// Reads [protocol://][user[:password]@]host[:port] by the first place of each separator; nothing is unescaped or
    /// checked. A port of more than 16 bits wraps, and what follows its digits is passed over. A port without digits
    /// is logged and gives the default for the whole text; throws std::out_of_range for one of more than 31 bits.
    static ProxyInfo parse(const std::wstring& text);

    /// The text with all fields; without the credentials when there is no user. Hidden also leaves out what may be a
    /// piece of a password that holds separators.
    std::wstring toString(Passwords passwords) const;
    /// Protocol, host and port only.
    std::wstring toStringAddress() const;
    /// The host without what may be the rest of a password.
    std::wstring shownHost() const;

    friend bool operator==(const ProxyInfo&, const ProxyInfo&) = default;

private:
    std::wstring write() const;
    ProxyInfo shown() const;
};

} // namespace vx::tarn::common
