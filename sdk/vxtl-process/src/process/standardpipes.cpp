#include "process/standardpipes.h"

#include "process/pipe.h"

#include <windows.h>

namespace vx::process {

namespace {

void* orInvalid(const SharedHandle& handle)
{
    return handle ? handle->get() : INVALID_HANDLE_VALUE;
}

} // namespace

StandardPipes::StandardPipes(Redirect redirect) : m_redirect(redirect)
{
    if (contains(redirect, Redirect::StandardInput))
        m_input = pipe::createPipe(true, false);
    if (contains(redirect, Redirect::StandardOutput))
        m_output = pipe::createPipe(false, true);
    if (contains(redirect, Redirect::StandardError))
        m_error = pipe::createPipe(false, true);
}

std::optional<StandardHandles> StandardPipes::childHandles() const
{
    if (m_redirect == Redirect::None)
        return std::nullopt;
    return StandardHandles{orInvalid(m_input.first), orInvalid(m_output.second), orInvalid(m_error.second)};
}

} // namespace vx::process
