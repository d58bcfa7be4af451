#include "agent/runjournal.h"

#include "childprocess.h"

#include <array>
#include <atomic>
#include <thread>

namespace devhost::agent {

TEST(RunJournal, numbersEveryStartOnceWhenManyAppendAtOnce)
{
    constexpr std::size_t writers = 8;
    constexpr std::size_t startsEach = 25;
    const support::TemporaryFolder folder;
    const auto file = folder.path() / "runs.jsonl";
    std::array<std::atomic<int>, writers * startsEach> numbered{};
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < writers; ++i)
        threads.emplace_back([&] {
            for (std::size_t start = 0; start < startsEach; ++start) {
                ++numbered.at(RunJournal(file).appendStart({"-c", "complete"}));
                RunJournal(file).appendEnd(0);
            }
        });
    for (auto& thread : threads)
        thread.join();
    for (const auto& times : numbered)
        EXPECT_EQ(times, 1);
    EXPECT_EQ(support::parseLines(support::readFile(file)).size(), 2 * numbered.size());
}

} // namespace devhost::agent
