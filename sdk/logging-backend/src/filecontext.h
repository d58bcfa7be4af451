#pragma once

#include "filesystem.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace VxQrlLogging {

namespace account {
bool hasLowIntegrity();
}

/// One log file and its rotated predecessors, shared with other processes through a named mutex: where it
/// stands, how it is configured, writing and rotating. The owner serialises the calls.
class FileContext {
public:
    /// `mutexWaitMs`: how long a record waits for the other processes before it is lost. `hasLowIntegrity`: asked
    /// by open() unless an administrator runs it.
    FileContext(std::wstring name1, std::wstring name2, unsigned flags, std::unique_ptr<FileSystem::Path> path,
        unsigned long mutexWaitMs = 500, bool (*hasLowIntegrity)() = account::hasLowIntegrity);
    virtual ~FileContext();
    FileContext(const FileContext&) = delete;
    FileContext& operator=(const FileContext&) = delete;

    /// Reads the configuration, makes the directories and the mutex. The file itself comes with the first
    /// record. True the first time, whatever failed; without directory or mutex all records drop out.
    virtual bool open();
    /// Appends the text as it is, rotating before when the file is full.
    virtual void write(std::wstring_view line);
    virtual void flush();
    /// These two as configured when it was opened.
    virtual int logLevel(int fallback) const;
    virtual bool debugOutputEnabled() const;
    /// Leaves the file open with room for a record; the mutex is held.
    virtual bool prepareFile();
    /// 0 is the current file, 1 the youngest rotated one; empty without a place.
    virtual std::wstring fileName(unsigned index) const;
    /// Removes under a changed name first, so that the old name is free at once.
    virtual void deleteFile(const std::wstring& path);
    /// `local`: within the session only.
    virtual std::wstring mutexName(bool local) const;

private:
    void place();
    void createMutex(bool administrator, bool local);
    bool acquire() const;
    bool hasRoom() const;
    void rotate();

    std::unique_ptr<FileSystem::Path> m_path;
    std::wstring m_name1;
    std::wstring m_name2;
    unsigned m_flags;
    void* m_mutex = nullptr;
    bool m_initialised = false;
    std::wstring m_fileBase;  ///< directory and stem
    unsigned m_maxSize = 100; ///< bytes
    unsigned m_rotateCount = 2;
    std::optional<unsigned long> m_logLevel;
    bool m_debugOutput = false;
    FileSystem::SecurityAttributesPointer m_securityAttributes;
    std::unique_ptr<FileSystem::File> m_file;
    std::vector<std::wstring> m_names; ///< fileName() of each index in use
    unsigned long m_mutexWaitMs;
    bool (*m_hasLowIntegrity)();
};

} // namespace VxQrlLogging
