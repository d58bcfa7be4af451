#pragma once

#include "common/settings/tarnpatchsettings.h"
#include "tarnhd/recovery/requestbook.h"

#include <memory>
#include <optional>

namespace vx::tarn {

class ChangeAnswers;
class RecoveryDriver;

/// Finds the remote requests that are open although nobody is at work on them and no start is pending, and serves them
/// as if they had just arrived. Borrows answers and driver.
class OpenRequests {
public:
    OpenRequests(const TarnpatchSettings& settings, std::shared_ptr<RequestBook> book, ChangeAnswers& answers,
        RecoveryDriver& driver);

    /// Any thread. Throws what the store throws.
    bool isAnyLeftAlone() const;
    /// One thread at a time. What fails is logged.
    void serve();

private:
    /// The value that is to be acknowledged.
    std::optional<std::int64_t> findOpen(AgentStartReason request) const;
    bool isForgotten(AgentStartReason request) const;
    void askForForgotten();
    bool judge(AgentStartReason request);

    const TarnpatchSettings m_settings;
    const std::shared_ptr<RequestBook> m_book;
    ChangeAnswers& m_answers;
    RecoveryDriver& m_driver;
};

} // namespace vx::tarn
