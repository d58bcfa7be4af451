#include "tarnctl/log/newfile.h"

#include "tarnctl/exitcode.h"
#include "vxtl/str.h"

namespace tarnctl::log {

namespace {

CommandError cannotWrite(const std::string& name)
{
    return {ExitCode::Unreadable, "cannot write " + name};
}

} // namespace

NewFile::NewFile(const std::string& name)
    : m_name(name), m_place(vx::str::fromUtf8(name)), m_beside(std::filesystem::path(m_place) += L".part"),
      m_stream(m_beside, std::ios::binary)
{
    if (!m_stream)
        throw cannotWrite(name);
}

NewFile::~NewFile()
{
    m_stream.close();
    std::error_code error;
    remove(m_beside, error);
}

void NewFile::keep()
{
    m_stream.close();
    std::error_code error;
    if (m_stream)
        rename(m_beside, m_place, error);
    if (!m_stream || error)
        throw cannotWrite(m_name);
}

} // namespace tarnctl::log
