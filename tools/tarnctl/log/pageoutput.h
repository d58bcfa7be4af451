#pragma once

#include "logreading/story.h"
#include "tarnctl/log/output.h"
#include "tarnctl/log/problems.h"

#include <iosfwd>

namespace tarnctl::log {

/// One self-contained page: findings, a time line, and the lines with filter and search. Lines are written as they
/// come; kept is only what the findings need.
class PageOutput : public Output {
public:
    /// The stream is borrowed, and binary.
    explicit PageOutput(std::ostream& stream);

    void line(std::string_view line, const logreading::Record* record) override;
    void end() override;

private:
    std::ostream& m_stream;
    logreading::Story m_story;
    Problems m_problems;
    std::vector<logreading::Moment> m_errors; ///< a bounded number
    logreading::Moment m_first = 0;
    logreading::Moment m_last = 0;
    bool m_any = false;
};

} // namespace tarnctl::log
