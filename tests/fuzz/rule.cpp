// A rule never throws, and parse, verdict and number of warnings are those of a second, plainer reading.

#include "common/parametricrule.h"
#include "common/patchinfo.h"
#include "input.h"
#include "support/logcapture.h"

#include <algorithm>

using namespace vx::tarn::common;

namespace {

constexpr const wchar_t* names[] = {L"PRODUCT", L"BULLETIN", L"SP", L"PATCH", L"SEVERITY"};

struct Reading {
    std::vector<std::pair<int, std::wstring>> parameters; ///< index of the name, value
    std::size_t warnings = 0;
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
    std::size_t i = 0;
    while (i < text.size() && (fuzz::isBlank(text[i]) || text[i] == L'\v' || text[i] == L'\f'))
        ++i;
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

struct Verdict {
    bool matches = false;
    std::size_t warnings = 0;
};

Verdict judgePlainly(const Reading& reading, const PatchInfo& patch)
{
    const std::wstring* attributes[] = {
        &patch.productName, &patch.bulletinId, &patch.servicePack, &patch.updateName, nullptr};
    for (const auto& [name, value] : reading.parameters) {
        if (attributes[name]) {
            if (*attributes[name] == value)
                return {true, 0};
            continue;
        }
        const auto severity = number(value);
        if (!severity)
            return {false, 1};
        if (*severity == patch.severity)
            return {true, 0};
    }
    return {};
}

/// Patches that each have one attribute as the parameter wants it.
std::vector<PatchInfo> patchesFor(const Reading& reading)
{
    std::vector<PatchInfo> patches(1);
    for (const auto& [name, value] : reading.parameters) {
        PatchInfo& patch = patches.emplace_back();
        std::wstring* attributes[] = {&patch.productName, &patch.bulletinId, &patch.servicePack, &patch.updateName};
        if (name < 4)
            *attributes[name] = value;
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
    const Reading reading = readPlainly(*text);
    std::vector<RuleParameter> parameters;
    {
        const support::LogCapture log(3);
        parameters = parseParametricRule(*text);
        fuzz::require(log.lines().size() == reading.warnings, "one warning for each bad parameter");
    }
    const auto equal = [](const RuleParameter& a, const auto& b) {
        return static_cast<int>(a.type) == b.first + 1 && a.value == b.second;
    };
    fuzz::require(
        std::equal(parameters.begin(), parameters.end(), reading.parameters.begin(), reading.parameters.end(), equal),
        "parameters");
    for (const PatchInfo& patch : patchesFor(reading)) {
        const support::LogCapture log(3);
        const Verdict expected = judgePlainly(reading, patch);
        fuzz::require(matchesParametricRule(parameters, patch) == expected.matches, "verdict");
        fuzz::require(log.lines().size() == expected.warnings, "a warning for a bad severity alone");
    }
    return 0;
}
