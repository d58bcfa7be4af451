#pragma once

#include "filecontext.h"
#include "logging-backend/logger.h"
#include "logging/details/criticalsection.h"

#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

namespace VxQrlLogging {

struct RecordTime;

/// The logger that writes to a file shared between processes and, when configured, to the debugger.
/// Locks: the critical section first, then the file's named mutex.
class LoggerWin : public Logger {
public:
    /// `levelMirror`, borrowed, follows this logger's level and outlives it.
    explicit LoggerWin(std::atomic<int>* levelMirror = nullptr) noexcept;
    /// Writes an "AUTO-CLOSED" line when still open.
    ~LoggerWin() override;

    void open(const char* name1, const char* name2, int level, unsigned flags) noexcept override;
    void open(const wchar_t* name1, const wchar_t* name2, int level, unsigned flags) noexcept override;
    void close() noexcept override;
    void flush() noexcept override;
    void vlog(int level, const wchar_t* format, std::va_list arguments) noexcept override;
    void vlog(int level, const char* format, std::va_list arguments) noexcept override;
    /// One record of two UTF-8 texts, as log(level, "%s%s", ...) writes it.
    void write(int level, std::string_view first, std::string_view second) noexcept;
    /// What open() writes through.
    virtual std::unique_ptr<FileContext> createContext(
        const std::wstring& name1, const std::wstring& name2, unsigned flags);

private:
    using Lock = std::unique_lock<vx::logging::details::CriticalSection>;

    void openCore(const std::wstring& name1, const std::wstring& name2, int level, unsigned flags);
    bool initialise(Lock& lock);
    void writeStartBanner();
    void logWide(int level, const wchar_t* format, std::va_list arguments);
    template <typename Fill>
    void logNarrow(int level, const char* format, const Fill& fill);
    void writeRecord(int level, const RecordTime& time, wchar_t* record, std::size_t size);
    void writeText(int level, std::wstring_view text);
    void setLevel(int level) noexcept;
    void drop() noexcept;

    std::atomic<bool> m_debugOutput{false};
    std::atomic<unsigned> m_flags{0};
    vx::logging::details::CriticalSection m_lock;
    std::unique_ptr<FileContext> m_context; ///< null while closed; guarded by m_lock
    std::atomic<int>* m_levelMirror;
};

} // namespace VxQrlLogging
