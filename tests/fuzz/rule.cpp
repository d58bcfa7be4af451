// A rule never throws, and parse, verdict and number of warnings are those of a second, plainer reading.

#include "common/operationinfo/parametricrule.h"
#include "common/patches/patchinfo.h"
#include "input.h"
#include "support/logcapture.h"

#include <algorithm>

using namespace vx::tarn::common;

namespace {

constexpr const wchar_t* names[] = {L"PRODUCT", L"BULLETIN", L"SP", L"PATCH", L"SEVERITY"};
constexpr int severityName = 4;
constexpr std::wstring PatchInfo::*attributes[] = {
    &PatchInfo::productName, &PatchInfo::bulletinId, &PatchInfo::servicePack, &PatchInfo::updateName};

struct Reading {
    std::vector<std::pair<int, std::wstring>> parameters; ///< index of the name, value
    std::size_t warnings = 0;

    bool operator==(const Reading&) const = default;
};

Reading readPlainly(const std::wstring& rule)
{
    Reading reading;
    for (const std::wstring& token : fuzz::pieces(rule, L';')) {
        if (token == L"ALLOW_UNSIGNED")
            continue;
        const auto sides = fuzz::pieces(token, L'=');
        const auto name = sides.size() == 2 ? std::find(std::begin(names), std::end(names), sides[0]) : std::end(names);
        if (name == std::end(names))
            ++reading.warnings;
        else
            reading.parameters.emplace_back(name - std::begin(names), sides[1]);
    }
    return reading;
}

/// The decimal number at the beginning; nothing without digits or beyond 32 bits.
std::optional<long long> number(const std::wstring& text)
{
    std::size_t i = std::min(text.find_first_not_of(L" \t\r\n\v\f"), text.size());
    const bool negative = i < text.size() && text[i] == L'-';
    if (i < text.size() && (text[i] == L'-' || text[i] == L'+'))
        ++i;
    const std::size_t first = i;
    long long value = 0;
    for (; i < text.size() && text[i] >= L'0' && text[i] <= L'9'; ++i)
        value = std::min(value * 10 + (text[i] - L'0'), 1LL << 32);
    value = negative ? -value : value;
    if (i == first || value < -(1LL << 31) || value >= 1LL << 31)
        return std::nullopt;
    return value;
}

/// Nothing when a bad severity ends the search.
std::optional<bool> judgePlainly(const Reading& reading, const PatchInfo& patch)
{
    for (const auto& [name, value] : reading.parameters) {
        if (name != severityName) {
            if (patch.*attributes[name] == value)
                return true;
        } else if (const auto severity = number(value); !severity || *severity == patch.severity) {
            return severity ? std::optional(true) : std::nullopt;
        }
    }
    return false;
}

/// Patches that each have one attribute as the parameter wants it.
std::vector<PatchInfo> patchesFor(const Reading& reading)
{
    std::vector<PatchInfo> patches(1);
    for (const auto& [name, value] : reading.parameters) {
        PatchInfo& patch = patches.emplace_back();
        if (name != severityName)
            patch.*attributes[name] = value;
        else
            patch.severity = static_cast<std::uint16_t>(number(value).value_or(1));
    }
    return patches;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto text = fuzz::text(data, size);
    if (!text)
        return 0;
    const Reading expected = readPlainly(*text);
    const support::LogCapture log(3);
    const auto parameters = parseParametricRule(*text);
    Reading reading{{}, log.lines().size()};
    for (const auto& [type, value] : parameters)
        reading.parameters.emplace_back(static_cast<int>(type) - 1, value);
    fuzz::require(reading == expected, "the parameters, and one warning for each bad one");
    for (const PatchInfo& patch : patchesFor(expected)) {
        const std::size_t before = log.lines().size();
        const auto verdict = judgePlainly(expected, patch);
        fuzz::require(matchesParametricRule(parameters, patch) == verdict.value_or(false), "verdict");
        fuzz::require(log.lines().size() == before + !verdict, "a warning for a bad severity alone");
    }
    return 0;
}
