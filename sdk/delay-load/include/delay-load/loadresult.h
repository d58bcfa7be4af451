#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace vx::delayload {

/// How a bootstrap ended. Other: without a library or function that could be named.
enum class LoadStatus : std::uint32_t { Success = 0, ModuleNotFound = 1, FunctionNotFound = 2, Other = 3 };

/// What became of a bootstrap. The names are narrow, cut at 1,024 characters and then without a zero behind.
struct LoadResult {
    LoadStatus status;
    char library[1024];
    char function[1024];

    std::string libraryName() const { return bounded(library, sizeof library); }
    std::string functionName() const { return bounded(function, sizeof function); }

private:
    static std::string bounded(const char* text, std::size_t size)
    {
        const std::string_view all(text, size);
        return std::string(all.substr(0, all.find('\0')));
    }
};
static_assert(sizeof(LoadResult) == 2052);
static_assert(offsetof(LoadResult, library) == 4 && offsetof(LoadResult, function) == 1028);

} // namespace vx::delayload
