#pragma once

#include "vxtl-process/process/launchdriver.h"
#include "vxtl-process/process/redirect.h"
#include "vxtl/handle.h"

#include <optional>
#include <utility>

namespace vx::process {

/// The pipes of one launch. The child's ends close with this object, which must therefore outlive the
/// launch and nothing else: as long as they are open here, the end of the child's output can't be seen.
class StandardPipes {
public:
    /// Throws Win32Exception.
    explicit StandardPipes(Redirect redirect);

    /// What the child gets; nothing when no stream is redirected.
    std::optional<StandardHandles> childHandles() const;

    /// The ends that stay here; null for a stream that isn't redirected.
    const SharedHandle& input() const { return m_input.second; }
    const SharedHandle& output() const { return m_output.first; }
    const SharedHandle& error() const { return m_error.first; }

private:
    using Ends = std::pair<SharedHandle, SharedHandle>;

    Redirect m_redirect;
    Ends m_input;
    Ends m_output;
    Ends m_error;
};

} // namespace vx::process
