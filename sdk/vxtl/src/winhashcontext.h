#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace vx::crypto {

/// One computation of a hash by the system. One thread; the provider behind it is made once
/// for each load of the module and never given back, as that must not happen while a library is unloaded. Throws
/// Win32Exception.
class WinHashContext {
public:
    /// `algorithm` is the system's number of it.
    explicit WinHashContext(unsigned long algorithm);

    /// Adds bytes. Throws BaseException for none or null.
    void hashData(const std::uint8_t* source, std::size_t size);
    /// The hash of all bytes added; nothing can be added afterwards.
    std::vector<std::uint8_t> finalizeHash();

private:
    struct HashDeleter {
        void operator()(void* hash) const noexcept;
    };
    std::unique_ptr<void, HashDeleter> m_hash;
};

} // namespace vx::crypto
