#pragma once

#include <string>

/// A row of the table for what is no comparison of two times: all columns are texts. Gives `holds`.
bool printReading(const std::string& path, const std::string& floor, const std::string& ours, const std::string& ratio,
    const std::string& reach, bool holds);

/// A number with its unit, two decimals.
std::string reading(double number, const char* unit);
