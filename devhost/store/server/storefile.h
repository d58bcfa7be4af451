#pragma once

#include "store/protocol/errorcode.h"
#include "vxtl/handle.h"

#include <memory>
#include <optional>
#include <string>

namespace devhost::store {

/// Throws StoreException with the text of the system's error code: AccessDenied for 5, else Unknown.
[[noreturn]] void throwSystemFailure(unsigned long error, const std::wstring& subject);

/// The one file of a store. Held by one server at a time, through a second file beside it that lives as
/// long as this object, and vanishes with the process. One thread at a time.
class StoreFile {
public:
    /// Makes missing folders. Throws StoreException: NotAllowed when another server has the file,
    /// AccessDenied or Unknown when the system refuses.
    explicit StoreFile(std::wstring path);

    /// The whole content; none when there is no file. Throws StoreException.
    std::optional<std::string> read() const;
    /// Puts new content in place of the old: at any moment the file holds the one or the other as a whole,
    /// also when the process or the machine dies. Throws StoreException and keeps the old content.
    void replace(const std::string& content) const;

private:
    void writeTemporary(const std::wstring& path, const std::string& content) const;

    std::wstring m_path;
    vx::SharedHandle m_lock;
};

} // namespace devhost::store
