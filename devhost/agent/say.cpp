#include "agent/say.h"

#include "logging/logstream.h"

#include <cstdio>

namespace devhost::agent {

void say(const std::string& line)
{
    std::printf("tarnag: %s\n", line.c_str());
    std::fflush(stdout);
    vx::logging::LogStream(vx::logging::Level::Info) << line;
}

} // namespace devhost::agent
