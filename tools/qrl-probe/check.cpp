#include "qrl-probe/check.h"

#include <array>

namespace tools::qrlprobe {

namespace {

constexpr std::array<CheckText, checkCount> texts{{
    {"name", "a text of 1 to 259 bytes"},
    {"record", "a plug-in record at an address divisible by 4, writable to its end"},
    {"size", "a size of 0, 24, 28, 32, 36 or more, divisible by 4"},
    {"hoster", "a host record at an address divisible by 4, readable, whose report function is code and stays"},
    {"initialize-once", "one call of the export in each load"},
    {"main-once", "one call of main in each load"},
    {"apartment", "main's thread in the multithreaded apartment or in none"},
    {"reports", "a report function that takes its 8 bytes of arguments off the stack"},
    {"stack", "a stack pointer divisible by 4 at each call"},
    {"same-record", "the record of the export at each call"},
    {"members", "a record that stays as it was filled in, until main returns"},
    {"threads", "no call on main's thread while main blocks it"},
    {"events-after-start", "no event ahead of main"},
    {"stop-after-start", "no stop before the start was reported"},
    {"stop-once", "one stop"},
    {"events-before-stop", "no event behind the stop"},
    {"calls-after-end", "no call behind main's return but a stop"},
    {"stop", "a stop, and main's return from it, before the process ends"},
    {"unload", "no call inside the library when it is unloaded"},
}};

} // namespace

const CheckText& textOf(Check check)
{
    return texts[static_cast<std::size_t>(check)];
}

} // namespace tools::qrlprobe
