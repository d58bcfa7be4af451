#pragma once

#include <string>
#include <vector>

namespace support {

/// Collects what the program logs while it lives, one entry per line. Links in place of the real
/// back-end. One at a time; any thread may log.
class LogCapture {
public:
    struct Line {
        int level; ///< the back-end's number: 2 error, 3 warning, 4 info, 5 debug
        std::string text;
    };

    /// Lines above `level` are filtered as the real back-end would.
    explicit LogCapture(int level = 5);
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    std::vector<Line> lines() const;
    /// All texts, one per line, for readable failures.
    std::string text() const;
    /// Whether a line of this level holds the text, leading blanks aside.
    bool has(int level, const std::string& text) const;
    std::size_t count(const std::string& text) const;
    /// Blocks until that many lines hold the text; false when they don't come.
    bool waitFor(const std::string& text, std::size_t times = 1) const;
};

} // namespace support
