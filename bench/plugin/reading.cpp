#include "reading.h"

#include <cstdio>

bool printReading(const std::string& path, const std::string& floor, const std::string& ours, const std::string& ratio,
    const std::string& reach, bool holds)
{
    std::printf("| %-44s | %10s | %10s | %6s | %-14s |\n", path.c_str(), floor.c_str(), ours.c_str(), ratio.c_str(),
        (reach.empty() ? reach : reach + (holds ? " ok" : " NO")).c_str());
    std::fflush(stdout);
    return holds;
}

std::string reading(double number, const char* unit)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.2f%s", number, unit);
    return text;
}
