#pragma once

#include <functional>

namespace devhost::host {

/// What becomes of a reboot that something in this process asks the system for.
enum class Reboots {
    Hold, ///< nothing; who asks is told that it has begun
    Play, ///< the host plays one
    Real, ///< the computer goes down
};

/// A call of the system's ExitWindowsEx.
struct RebootRequest {
    unsigned flags;
    unsigned long reason;
};

/// Catches reboots for the object's life, whoever in this process asks for them and however it came to the function,
/// which is overwritten with a jump. One at a time, made and destroyed while nobody asks.
class RebootCatch {
public:
    /// What the caller gets to hear: that the reboot has begun, or what the system itself answers.
    enum class Answer { Begun, FromSystem };
    /// Called on the thread that asks, one call at a time; must not throw.
    using Listener = std::function<Answer(const RebootRequest&)>;

    /// Throws CommandError when the system has no such function.
    explicit RebootCatch(Listener listener);
    ~RebootCatch();
    RebootCatch(const RebootCatch&) = delete;
    RebootCatch& operator=(const RebootCatch&) = delete;
};

} // namespace devhost::host
