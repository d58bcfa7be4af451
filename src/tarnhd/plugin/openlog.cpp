#include "logging-backend/processlogger.h"
#include "logging/startupheader.h"

#include <cstdlib>

namespace {

constexpr int infoLevel = 4;

/// Opens the log ahead of the library's attach, so that everything after finds it open.
struct OpenLog {
    OpenLog() noexcept
    {
        VxQrlLogging::open("tarn", "tarnhd", infoLevel, 0);
        vx::logging::startup_header::write();
        // For a library this is its unload or the end of the process, whichever comes first.
        std::atexit(VxQrlLogging::close);
    }
};

const OpenLog openLog;

} // namespace
