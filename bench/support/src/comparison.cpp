#include "bench/comparison.h"

#include <algorithm>
#include <cstdio>
#include <utility>
#include <vector>

namespace bench {

namespace {

double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

std::string duration(double nanoseconds)
{
    char text[32];
    if (nanoseconds < 1e3)
        std::snprintf(text, sizeof text, "%.2f ns", nanoseconds);
    else if (nanoseconds < 1e6)
        std::snprintf(text, sizeof text, "%.2f us", nanoseconds / 1e3);
    else
        std::snprintf(text, sizeof text, "%.2f ms", nanoseconds / 1e6);
    return text;
}

} // namespace

Measure perBatch(std::size_t operations, std::function<void()> body)
{
    return [operations, once = perCall(1, std::move(body))] { return once() / static_cast<double>(operations); };
}

Comparison::Comparison(std::string title, int repeats) : m_repeats(repeats)
{
    std::printf("%s\n\n| %-44s | %10s | %10s | %6s | %-14s |\n|%s|%s|%s|%s|%s|\n", title.c_str(), "path", "floor",
        "ours", "ratio", "reach", std::string(46, '-').c_str(), std::string(12, '-').c_str(),
        std::string(12, '-').c_str(), std::string(8, '-').c_str(), std::string(16, '-').c_str());
    std::fflush(stdout);
}

void Comparison::row(const std::string& path, const Measure& floor, const Measure& ours, Reach reach)
{
    row(path, floor, ours, reach, m_repeats);
}

void Comparison::row(const std::string& path, const Measure& floor, const Measure& ours, Reach reach, int repeats)
{
    floor();
    ours();
    std::vector<double> floors;
    std::vector<double> times;
    std::vector<double> ratios;
    for (int i = 0; i < repeats; ++i) {
        // The side that goes first changes, so that neither always finds the other's cache.
        double ourTime = i % 2 ? ours() : 0;
        const double floorTime = floor();
        if (i % 2 == 0)
            ourTime = ours();
        floors.push_back(floorTime);
        times.push_back(ourTime);
        ratios.push_back(reach.kind == Reach::Kind::Time ? ourTime / floorTime : floorTime / ourTime);
    }
    const double ratio = median(ratios);
    const bool reached = reach.kind == Reach::Kind::Time ? ratio <= reach.ratio : ratio >= reach.ratio;
    m_failed |= !reached;
    char target[32];
    std::snprintf(target, sizeof target, "%s %.2fx %s", reach.kind == Reach::Kind::Time ? "<=" : "rate >=", reach.ratio,
        reached ? "ok" : "NO");
    std::printf("| %-44s | %10s | %10s | %5.2fx | %-14s |\n", path.c_str(), duration(median(floors)).c_str(),
        duration(median(times)).c_str(), ratio, target);
    std::fflush(stdout);
}

void Comparison::note(const std::string& text, bool holds)
{
    m_failed |= !holds;
    std::printf("%s%s\n", holds ? "" : "FAILED: ", text.c_str());
    std::fflush(stdout);
}

} // namespace bench
