#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

struct _SECURITY_ATTRIBUTES;

/// The log's own thin file layer. Nothing here throws a system failure: operations answer false.
namespace VxQrlLogging::FileSystem {

using SecurityAttributes = ::_SECURITY_ATTRIBUTES;

/// Attributes that own their descriptor.
struct SecurityAttributesDeleter {
    void operator()(SecurityAttributes* attributes) const noexcept;
};
using SecurityAttributesPointer = std::unique_ptr<SecurityAttributes, SecurityAttributesDeleter>;

/// A file for appending, shared with everybody for reading, writing and deleting.
class File {
public:
    File() = default;
    virtual ~File();
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    /// Opens or makes the file, marks a new one as UTF-16 and stands at its end. True when open already.
    virtual bool open(const std::wstring& path, SecurityAttributes* attributes);
    virtual void close();
    /// Writes all the bytes.
    virtual bool write(const void* buffer, std::size_t bytes);
    /// Bytes of the file; moves the position to the end, where the next write goes.
    virtual std::uint64_t size();
    virtual bool flush();
    virtual bool isOpen() const;
    virtual bool writeByteOrderMark();

private:
    void* m_handle = reinterpret_cast<void*>(-1);
};

/// Operations on names.
class Path {
public:
    Path() = default;
    virtual ~Path() = default;
    Path(const Path&) = delete;
    Path& operator=(const Path&) = delete;

    /// A closed file.
    virtual std::unique_ptr<File> createFile();
    /// Whether the name is there and no directory.
    virtual bool exists(const std::wstring& path);
    /// Makes the directory and what is missing above it, each with the attributes (may be null).
    virtual bool createDirectories(const std::wstring& path, SecurityAttributes* attributes);
    /// Replaces what stands at the target.
    virtual bool move(const std::wstring& from, const std::wstring& to);
    /// A file that can't be removed now is removed at the next start of the system.
    virtual bool remove(const std::wstring& path);
};

} // namespace VxQrlLogging::FileSystem
