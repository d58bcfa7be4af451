// Runs the tests, or plays the child of one: child exit CODE | echo | drain | cwd.
#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <string_view>

namespace {

int echo()
{
    std::string line;
    std::getline(std::cin, line);
    std::cout << "out " << line << std::flush;
    std::cerr << "err " << line << std::flush;
    return 3;
}

int drain()
{
    return static_cast<int>(std::distance(std::istreambuf_iterator<char>(std::cin), {}));
}

int runAsChild(const std::string& part, const char* argument)
{
    if (part == "exit")
        return std::atoi(argument);
    if (part == "echo")
        return echo();
    if (part == "drain")
        return drain();
    if (part == "cwd")
        return std::filesystem::exists("elsewhere") ? 5 : 6;
    return 99;
}

} // namespace

int main(int argc, char** argv)
{
    // Not always the first argument: a path with blanks that isn't quoted reads as several ones.
    char** const child = std::find(argv, argv + argc, std::string_view("child"));
    if (argv + argc - child > 1)
        return runAsChild(child[1], argv + argc - child > 2 ? child[2] : "");
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
