#include "qrl-probe/hostlife.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cstring>

namespace tools::qrlprobe {

namespace {

constexpr std::size_t listedCalls = 40;
constexpr std::uint32_t reportArguments = 8;
/// The size up to which a plug-in writes in any case.
constexpr std::uint32_t leastRoom = 20;

unsigned alignmentOf(std::uintptr_t address)
{
    return 1u << std::min(std::countr_zero(address), 4);
}

std::string hex(unsigned long number)
{
    char digits[16];
    const auto end = std::to_chars(digits, digits + sizeof digits, number, 16).ptr;
    return "0x" + std::string(digits, end);
}

std::string describe(const Arrival& arrival)
{
    static constexpr const char* names[] = {"export", "main", "stop", "resume", "power event", "session event"};
    return names[static_cast<std::size_t>(arrival.call)] + std::string(" on thread ") + hex(arrival.thread);
}

std::size_t comparedBytes(const vx::qrl::pluginAPI& record)
{
    return std::min<std::size_t>(roomOf(record.size), sizeof record);
}

/// In the report's own way to write, whatever code page the host's text is in.
std::string quoted(std::string text)
{
    std::ranges::replace_if(
        text, [](char c) { return c < ' ' || c > '~'; }, '?');
    return '"' + text + '"';
}

bool isKnownSize(std::uint32_t size)
{
    return size == 0 || size == 24 || size == 28 || (size >= 32 && size % 4 == 0);
}

} // namespace

void HostLife::arrive(const Arrival& arrival)
{
    ++m_inside;
    const auto what = describe(arrival);
    if (m_calls.size() < listedCalls)
        m_calls.push_back(what + ", stack pointer divisible by " + std::to_string(alignmentOf(arrival.stack)));
    judgeStack(arrival);
    judgeRecord(arrival);
    judgeThread(arrival);
    switch (arrival.call) {
    case Call::Initialize: judgeCount(Check::InitializeOnce, ++m_initializes); break;
    case Call::Main: judgeCount(Check::MainOnce, ++m_mains); break;
    case Call::Stop: judgeStop(what); break;
    case Call::Resume:
    case Call::PowerEvent:
    case Call::SessionEvent: judgeEvent(what); break;
    }
    if (arrival.call == Call::Main && m_mains == 1)
        m_mainThread = arrival.thread;
}

void HostLife::judgeCount(Check check, unsigned count)
{
    m_findings.judge(check, count == 1, count == 1 ? "one" : "another one");
}

void HostLife::judgeStack(const Arrival& arrival)
{
    const auto alignment = alignmentOf(arrival.stack);
    m_leastAlignment = std::min(m_leastAlignment, alignment);
    const auto divisor = std::to_string(m_leastAlignment);
    if (m_leastAlignment < 4)
        m_findings.fail(Check::Stack, describe(arrival) + " with one that is divisible by " + divisor + " only");
    else
        m_findings.pass(Check::Stack, "divisible by " + divisor + " at each call");
}

void HostLife::judgeRecord(const Arrival& arrival)
{
    if (arrival.call == Call::Initialize || m_phase == Phase::Loaded)
        return;
    m_findings.judge(Check::SameRecord, arrival.record == m_record,
        arrival.record == m_record ? "the same" : "another one: " + describe(arrival));
    // The record of a plug-in that has ended may be gone, and another one was never looked at.
    if (arrival.record == m_record && m_phase != Phase::Ended)
        judgeMembers(arrival.readable, describe(arrival));
}

void HostLife::judgeMembers(std::size_t readable, const std::string& when)
{
    const auto size = comparedBytes(m_filled);
    if (readable < size) {
        m_findings.fail(Check::Members, "memory that can't be read any more: " + when);
        return;
    }
    const auto* const seen = reinterpret_cast<const unsigned char*>(m_record);
    const auto* const filled = reinterpret_cast<const unsigned char*>(&m_filled);
    const auto* const difference = std::mismatch(filled, filled + size, seen).first;
    const auto place = static_cast<std::size_t>(difference - filled);
    m_findings.judge(Check::Members, place == size,
        place == size ? "the same" : "another value at offset " + std::to_string(place / 4 * 4) + ": " + when);
}

void HostLife::judgeThread(const Arrival& arrival)
{
    if (m_phase != Phase::Running || arrival.call == Call::Main)
        return;
    const bool isForeign = arrival.thread != m_mainThread;
    m_findings.judge(Check::Threads, isForeign,
        isForeign ? "main on thread " + hex(m_mainThread) + ", the others elsewhere" : describe(arrival));
}

void HostLife::judgeStop(const std::string& what)
{
    if (++m_stops > 1) {
        m_findings.fail(Check::StopOnce, "another " + what);
        return;
    }
    m_findings.pass(Check::StopOnce, "one stop");
    const bool isEarly = m_phase < Phase::Running;
    m_findings.judge(Check::StopAfterStart, !isEarly, isEarly ? "before that, " + what : what);
}

void HostLife::judgeEvent(const std::string& what)
{
    if (m_phase != Phase::Running)
        m_findings.fail(m_phase == Phase::Ended ? Check::CallsAfterEnd : Check::EventsAfterStart, what);
    else if (isStopped())
        m_findings.fail(Check::EventsBeforeStop, what);
}

bool HostLife::introduce(const Introduction& introduction)
{
    if (m_initializes > 1)
        return false;
    const auto size = introduction.size;
    const auto sizeText = size ? std::to_string(*size) + " bytes" : "none that could be read";
    m_findings.judge(Check::Name, introduction.name && !introduction.name->empty(),
        introduction.name ? quoted(*introduction.name) : "none that could be read");
    m_findings.judge(Check::Record, introduction.isRecordAligned && introduction.isRecordWritable,
        !introduction.isRecordAligned    ? "an address that is not divisible by 4"
        : !introduction.isRecordWritable ? "null, or memory that can't be written to"
                                         : "writable, " + sizeText);
    if (size)
        m_findings.judge(Check::Size, isKnownSize(*size), sizeText);
    m_findings.judge(Check::Hoster,
        introduction.isHosterAligned && introduction.isHosterReadable && introduction.isReportCode,
        !introduction.isHosterAligned    ? "an address that is not divisible by 4"
        : !introduction.isHosterReadable ? "null, or memory that can't be read"
        : !introduction.isReportCode     ? "a report function that is null or no code"
                                         : "readable, with a report function");
    return introduction.isRecordWritable && roomOf(*size) >= leastRoom;
}

void HostLife::recordFilled(const vx::qrl::pluginAPI& record)
{
    m_record = &record;
    std::memcpy(&m_filled, &record, comparedBytes(record));
    m_phase = Phase::Initialized;
}

bool HostLife::beginMain(Apartment apartment)
{
    if (m_mains > 1 || m_phase != Phase::Initialized)
        return false;
    static constexpr const char* apartments[] = {"in none", "in the multithreaded one", "in a single-threaded one"};
    m_findings.judge(
        Check::Apartment, apartment != Apartment::SingleThreaded, apartments[static_cast<std::size_t>(apartment)]);
    m_phase = Phase::Running;
    return true;
}

void HostLife::hosterChanged()
{
    m_findings.fail(Check::Hoster, "another report function, or memory that can't be read, at a report");
}

void HostLife::reported(std::uint32_t taken)
{
    m_findings.judge(Check::Reports, taken == reportArguments, std::to_string(taken) + " bytes taken");
}

void HostLife::mainEnded(std::size_t readable)
{
    judgeMembers(readable, "main's end");
    m_phase = Phase::Ended;
    m_findings.pass(Check::EventsAfterStart, "none");
    m_findings.pass(Check::EventsBeforeStop, "none");
    if (isStopped())
        m_findings.pass(Check::Stop, "both");
}

void HostLife::unloading()
{
    if (m_phase == Phase::Ended)
        m_findings.pass(Check::CallsAfterEnd, "none");
    m_findings.judge(Check::Unload, !isInside(),
        isInside()
            ? "calls inside: " + std::to_string(m_inside) + (m_phase == Phase::Running ? ", main among them" : "")
            : "none");
}

void HostLife::processEnding()
{
    if (m_phase == Phase::Ended)
        m_findings.pass(Check::CallsAfterEnd, "none");
    if (m_phase == Phase::Running)
        m_findings.fail(Check::Stop, isStopped() ? "a stop, but main had no time to return" : "no stop");
}

} // namespace tools::qrlprobe
