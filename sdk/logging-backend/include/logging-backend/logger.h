#pragma once

#include <atomic>
#include <cstdarg>

namespace VxQrlLogging {

/// Flags of open().
inline constexpr unsigned LOG_FLAG_BANNER_DEBUG = 0x02; ///< banners at level 5 instead of 4
inline constexpr unsigned LOG_FLAG_DEFERRED = 0x04;     ///< nothing is read or made before the first message
inline constexpr unsigned LOG_FLAG_USER_SUFFIX = 0x08;  ///< an administrator's file name carries the user's SID
inline constexpr unsigned LOG_FLAG_UTC = 0x10;          ///< time stamps in UTC
inline constexpr unsigned LOG_FLAG_STRICT_ACL = 0x20;   ///< an administrator's directory is closed to others

/// A log with printf-style entries. Levels: 1 fatal, 2 error, 3 warning, 4 info, 5 debug, 6 verbose; a
/// message passes when its level is not greater than the logger's, which is 0 until open(). Formats have
/// the system's own meaning ("%s" is text of the format's kind, "%S" of the other kind); narrow text is
/// UTF-8. Any thread may call; no operation throws, and each keeps the thread's last error.
class Logger {
public:
    virtual ~Logger() = default;

    /// The names make up the file's place. Ignored while open.
    virtual void open(const char* name1, const char* name2, int level, unsigned flags) = 0;
    virtual void open(const wchar_t* name1, const wchar_t* name2, int level, unsigned flags) = 0;
    virtual void close() = 0;
    virtual void flush() = 0;
    virtual void vlog(int level, const wchar_t* format, std::va_list arguments) = 0;
    virtual void vlog(int level, const char* format, std::va_list arguments) = 0;
    virtual bool isEnabled(int level) const;
    virtual bool isFiltered(int level) const;
    /// The two characters that stand for the level in a record.
    virtual const wchar_t* levelPrefix(int level) const;
    virtual int bannerLevel(unsigned flags) const;
    virtual void log(int level, const char* format, ...);
    virtual void log(int level, const wchar_t* format, ...);

protected:
    Logger() = default;
    Logger(const Logger&) = delete;
    Logger& operator=(const Logger&) = delete;

    std::atomic<int> m_level{0};
};

} // namespace VxQrlLogging
