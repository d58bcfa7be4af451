#pragma once

#include "logreading/story.h"
#include "tarnctl/log/blockwriter.h"
#include "tarnctl/log/output.h"
#include "tarnctl/log/problems.h"

#include <nlohmann/json_fwd.hpp>

namespace tarnctl::log {

/// One self-contained page: findings, a time line, and the lines with filter and search. Lines are written as they
/// come; kept is only what the findings need.
class PageOutput : public Output {
public:
    /// The stream is borrowed, and binary.
    explicit PageOutput(std::ostream& stream);

    void line(std::string_view line, const logreading::Record* record) override;
    void flush() override { m_writer.flush(); }
    void end() override;

private:
    void writeText(std::string_view text);
    void writeJson(const nlohmann::ordered_json& object);
    template <typename Items>
    void writeList(std::string_view name, const Items& items);

    BlockWriter m_writer;
    logreading::Story m_story;
    Problems m_problems;
    std::vector<logreading::Moment> m_errors; ///< a bounded number
    logreading::Moment m_first = 0;
    logreading::Moment m_last = 0;
    bool m_any = false;
};

} // namespace tarnctl::log
