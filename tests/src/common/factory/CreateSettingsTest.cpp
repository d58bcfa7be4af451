#include "common/factory/createsettings.h"

#include "meridia-settings/qrlmeridiaerror.h"
#include "settings-api/settings.h"
#include "support/logcapture.h"

#include <stdexcept>

using namespace vx;
using meridia::QrlMeridiaError_enum;

TEST(CreateSettings, triesAsOftenAsTheCallerWants)
{
    const struct {
        const char* label;
        int failures, code, patience; ///< code: 0 for no store error; patience: with how many, -1 for no callable
        int attempts;
    } rows[] = {{"no callable", 9, 3, -1, 1}, {"given up after two", 9, 3, 2, 3}, {"comes back", 2, 3, 5, 3},
        {"other store error", 1, 5, 5, 2}, {"not a store error", 9, 0, 5, 1}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        const support::LogCapture log;
        int attempts = 0, asked = 0;
        const auto make = [&] {
            if (++attempts > row.failures)
                return std::make_shared<settings::Settings>(nullptr);
            if (row.code == 0)
                throw std::runtime_error("no library");
            VX_THROW(QrlMeridiaException, static_cast<QrlMeridiaError_enum>(row.code), std::wstring());
        };
        tarn::common::CommonFactory::RetryCallback retry;
        if (row.patience >= 0)
            retry = [&](QrlMeridiaError_enum error) {
                EXPECT_EQ(static_cast<int>(error), row.code);
                return asked++ < row.patience;
            };
        try {
            EXPECT_NE(tarn::common::createSettings(make, retry), nullptr);
            EXPECT_GT(attempts, row.failures);
        } catch (const QrlMeridiaException& e) {
            EXPECT_LE(attempts, row.failures);
            EXPECT_EQ(e.code(), QrlMeridiaError_enum::ServerUnreachable);
            EXPECT_THAT(e.what(), testing::HasSubstr(", Function: vx::tarn::common::CommonFactory::createSettings, "));
        }
        EXPECT_EQ(attempts, row.attempts);
        EXPECT_EQ(log.has(5, "Error Code : " + std::to_string(row.code)), row.code != 0);
        EXPECT_EQ(log.has(2, "Exception caught: no library"), row.code == 0);
    }
}
