#include "host/conduct.h"

#include "host/exitcode.h"

#include <algorithm>
#include <cstring>
#include <objbase.h>
#include <stdexcept>
#include <thread>
#include <windows.h>

namespace devhost::host {

namespace {

constexpr std::uint32_t stateStopped = 0;
constexpr std::uint32_t stateStarted = 1;

void powerEvent(PluginApi* called, PluginApi* record)
{
    constexpr std::uint32_t resumeAutomatic = 18;
    called->onPowerEvent(record, resumeAutomatic, 0);
}

void powerEvent(PluginApi* record)
{
    powerEvent(record, record);
}

std::uint32_t initializeTwice(const PluginLoader& loader, const char* name, HosterApi* hoster, PluginApi* record)
{
    const auto code = loader.initialize(name, hoster, record);
    loader.initialize(name, hoster, record);
    return code;
}

std::uint32_t initializeAndTell(const PluginLoader& loader, const char* name, HosterApi* hoster, PluginApi* record)
{
    const auto code = loader.initialize(name, hoster, record);
    powerEvent(record);
    return code;
}

// At an odd address, and there as long as the process, as the plug-in keeps it.
std::uint32_t initializeWithOddHoster(
    const PluginLoader& loader, const char* name, HosterApi* hoster, PluginApi* record)
{
    alignas(HosterApi) static char memory[1 + sizeof(HosterApi)];
    std::memcpy(memory + 1, hoster, sizeof(HosterApi));
    return loader.initialize(name, reinterpret_cast<HosterApi*>(memory + 1), record);
}

HosterApi* reported = nullptr;

// Leaves its arguments on the stack.
void __cdecl reportUnclearedly(const char* name, std::uint32_t state)
{
    reported->reportPluginState(name, state);
}

std::uint32_t initializeWithWrongConvention(
    const PluginLoader& loader, const char* name, HosterApi* hoster, PluginApi* record)
{
    reported = hoster;
    const auto report = reinterpret_cast<void*>(&reportUnclearedly);
    static HosterApi wrong{0, reinterpret_cast<decltype(HosterApi::reportPluginState)>(report)};
    return loader.initialize(name, &wrong, record);
}

std::uint32_t mainInSingleThreadedApartment(PluginApi* record)
{
    const auto result = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    const auto code = record->pluginMain(record);
    if (SUCCEEDED(result))
        CoUninitialize();
    return code;
}

std::uint32_t mainTwice(PluginApi* record)
{
    const auto code = record->pluginMain(record);
    record->pluginMain(record);
    return code;
}

std::uint32_t mainAndTell(PluginApi* record)
{
    const auto tell = record->onPowerEvent;
    const auto code = record->pluginMain(record);
    tell(record, 0, 0);
    return code;
}

std::uint32_t stopAndMain(PluginApi* record)
{
    record->pluginStop(record);
    return record->pluginMain(record);
}

void tellFromReport(PluginApi* record, std::uint32_t state)
{
    if (state == stateStarted)
        powerEvent(record);
}

// From the last report, as main is still inside then for certain.
void tellAfterStop(PluginApi* record, std::uint32_t state)
{
    if (state == stateStopped)
        std::thread([record] { powerEvent(record); }).join();
}

std::uint32_t tellWithSkewedStackAndStop(PluginLoader&, PluginApi* record)
{
    asm volatile("movl %%esp, %%edi\n\t"
                 "andl $-16, %%esp\n\t"
                 "subl $2, %%esp\n\t"
                 "pushl $0\n\t"
                 "pushl $18\n\t"
                 "pushl %[record]\n\t"
                 "call *%[function]\n\t"
                 "movl %%edi, %%esp"
                 :
                 : [function] "S"(record->onPowerEvent), [record] "b"(record)
                 : "eax", "ecx", "edx", "edi", "memory", "cc");
    return record->pluginStop(record);
}

std::uint32_t tellWithCopyAndStop(PluginLoader&, PluginApi* record)
{
    PluginApi copy = *record;
    powerEvent(record, &copy);
    return record->pluginStop(record);
}

std::uint32_t changeRecordAndStop(PluginLoader&, PluginApi* record)
{
    record->onSessionChangeEvent = nullptr;
    return record->pluginStop(record);
}

std::uint32_t stopTwice(PluginLoader&, PluginApi* record)
{
    const auto stop = record->pluginStop;
    stop(record);
    return stop(record);
}

std::uint32_t endWithoutStop(PluginLoader&, PluginApi*)
{
    ExitProcess(static_cast<UINT>(ExitCode::Done));
}

std::uint32_t unloadWithoutStop(PluginLoader& loader, PluginApi*)
{
    loader.unload();
    return 0;
}

constexpr Conduct misconducts[] = {
    {.kind = "name",
        .initialize = [](const PluginLoader& loader, const char*, HosterApi* hoster,
                          PluginApi* record) { return loader.initialize(nullptr, hoster, record); }},
    {.kind = "record",
        .initialize = [](const PluginLoader& loader, const char* name, HosterApi* hoster,
                          PluginApi*) { return loader.initialize(name, hoster, nullptr); }},
    {.kind = "size", .size = 30},
    {.kind = "hoster", .initialize = initializeWithOddHoster},
    {.kind = "initialize-once", .initialize = initializeTwice},
    {.kind = "main-once", .main = mainTwice},
    {.kind = "apartment", .main = mainInSingleThreadedApartment},
    {.kind = "reports", .initialize = initializeWithWrongConvention},
    {.kind = "stack", .stop = tellWithSkewedStackAndStop},
    {.kind = "same-record", .stop = tellWithCopyAndStop},
    {.kind = "members", .stop = changeRecordAndStop},
    {.kind = "threads", .onReport = tellFromReport},
    {.kind = "events-after-start", .initialize = initializeAndTell},
    {.kind = "stop-after-start", .main = stopAndMain, .stop = [](PluginLoader&, PluginApi*) { return 0u; }},
    {.kind = "stop-once", .stop = stopTwice},
    {.kind = "events-before-stop", .onReport = tellAfterStop},
    {.kind = "calls-after-end", .main = mainAndTell},
    {.kind = "stop", .stop = endWithoutStop},
    {.kind = "unload", .stop = unloadWithoutStop},
};

} // namespace

std::set<std::string> misconductKinds()
{
    std::set<std::string> kinds;
    for (const auto& conduct : misconducts)
        kinds.insert(conduct.kind);
    return kinds;
}

const Conduct& misconduct(const std::string& kind)
{
    const auto* const found = std::ranges::find(misconducts, kind, &Conduct::kind);
    if (found == std::end(misconducts))
        throw std::out_of_range("no kind of misconduct: " + kind);
    return *found;
}

} // namespace devhost::host
