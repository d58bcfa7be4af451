#include "filteredcalls.h"

#include "logging/logstream.h"

#include <memory>
#include <spdlog/logger.h>
#include <spdlog/sinks/null_sink.h>
#include <string>

namespace {

constexpr std::size_t calls = 5'000'000;

} // namespace

void compareFilteredCalls(bench::Comparison& table)
{
    // What the values are is out of the compiler's sight, and the loggers are reached as programs reach them.
    const auto logger = std::make_shared<spdlog::logger>("bench", std::make_shared<spdlog::sinks::null_sink_mt>());
    logger->set_level(spdlog::level::warn);
    std::string text = "a text that is long enough to stand on the heap";
    int number = 7;
    bench::keep(text);
    bench::keep(number);

    const auto floor = bench::perCall(calls, [&] { logger->debug("{}{}{}", text, number, "end"); });
    table.row("filtered LogStream, three inserts", floor,
        bench::perCall(calls, [&] { vx::logging::LogStream(vx::logging::Level::Debug) << text << number << "end"; }),
        bench::Reach::timeUpTo(1.0));
    table.row("filtered LogScope", floor,
        bench::perCall(calls, [] { const vx::logging::LogScope scope("vx::scheduler::Task::setTriggers"); }),
        bench::Reach::timeUpTo(0.5));
}
