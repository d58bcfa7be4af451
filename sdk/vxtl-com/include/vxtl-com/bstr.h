#pragma once

#include <string>
#include <string_view>

namespace vx::com {

/// Owns a text of OLE Automation, the system's BSTR, or none, which counts as an empty one. One thread at a time.
class Bstr {
public:
    Bstr() = default;
    /// Throws ComException with E_OUTOFMEMORY.
    explicit Bstr(std::wstring_view text);
    ~Bstr();
    Bstr(const Bstr&) = delete;
    Bstr& operator=(const Bstr&) = delete;

    /// Borrowed, as all arguments of calls are.
    wchar_t* get() const noexcept { return m_text; }
    /// Where a call is to put the text that it gives. Frees the present one.
    wchar_t** put();
    std::wstring text() const;

private:
    void free() noexcept;

    wchar_t* m_text = nullptr;
};

} // namespace vx::com
