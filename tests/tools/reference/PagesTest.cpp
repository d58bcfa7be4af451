#include "reference/pages.h"
#include "common/exitstatus/exitstatus.h"
#include "reference/tokens.h"
#include "reference/usednames.h"

#include <gmock/gmock.h>

using testing::IsEmpty;

TEST(Pages, areTheCommittedOnes)
{
    const auto sources = tools::readSources(".");
    for (const auto& page : tools::pages()) {
        // Not as texts that are printed: the log's page is long.
        EXPECT_TRUE(page.text(sources) == tools::readFile(page.file)) << page.file << ": ./run docs makes it anew";
    }
}

TEST(Pages, haveARowForEachNameThatTheSourcesGiveToTheSystem)
{
    EXPECT_THAT(tools::unknownNames(tools::readSources("."), tools::describedNames()), IsEmpty());
}

TEST(Pages, haveEachExitStatus)
{
    const auto text = tools::readFile("src/common/exitstatus/exitstatus.h");
    const auto tokens = tools::tokensOf(text);
    std::size_t rows = 0;
    for (std::size_t at = 2; at < tokens.size(); ++at)
        rows += tokens[at].is("{") && tokens[at - 2].raw == "ExitStatus";
    EXPECT_EQ(rows, std::size(vx::tarn::common::exitstatus::all));
}
