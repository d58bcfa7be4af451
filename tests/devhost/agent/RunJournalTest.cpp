#include "agent/runjournal.h"

#include "childprocess.h"

#include <gmock/gmock.h>
#include <mutex>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <thread>

namespace devhost::agent {

TEST(RunJournal, numbersEveryStartOnceWhenManyAppendAtOnce)
{
    constexpr std::size_t writers = 8;
    constexpr std::size_t startsEach = 25;
    const support::TemporaryFolder folder;
    const auto file = folder.path() / "runs.jsonl";
    std::mutex mutex;
    std::set<std::size_t> numbers; // guarded by mutex
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < writers; ++i)
        threads.emplace_back([&] {
            for (std::size_t start = 0; start < startsEach; ++start) {
                const auto number = RunJournal(file).appendStart({"-c", "complete"});
                RunJournal(file).appendEnd(0);
                const std::lock_guard lock(mutex);
                numbers.insert(number);
            }
        });
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(numbers.size(), writers * startsEach);
    EXPECT_EQ(*numbers.rbegin(), writers * startsEach - 1);
    std::istringstream lines(support::readFile(file));
    std::size_t count = 0;
    for (std::string line; std::getline(lines, line); ++count)
        EXPECT_TRUE(nlohmann::json::accept(line)) << line;
    EXPECT_EQ(count, 2 * writers * startsEach);
}

} // namespace devhost::agent
