#include "createsettings.h"

#include "meridia-settings/qrlmeridiaerror.h"
#include "settings-api/settings.h"
#include "support/logcapture.h"

#include <stdexcept>

namespace vx::tarn::common {
namespace {

using meridia::QrlMeridiaError_enum;

/// A store that fails a number of times.
struct FailingStore {
    std::shared_ptr<settings::Settings> operator()()
    {
        if (++attempts > failures)
            return std::make_shared<settings::Settings>(nullptr);
        if (code == 0)
            throw std::runtime_error("no library");
        VX_THROW(QrlMeridiaException, static_cast<QrlMeridiaError_enum>(code), std::wstring());
    }
    int failures;
    int code; ///< 0: something else than a store error
    int attempts = 0;
};

TEST(CreateSettings, triesAsOftenAsTheCallerWants)
{
    struct Row {
        const char* label;
        int failures, code, patience; ///< patience: how many errors the caller puts up with; -1 no callable
        int attempts;
        bool opens;
    };
    for (const Row& row :
        {Row{"no failure", 0, 3, 0, 1, true}, {"no patience", 9, 3, 0, 1, false}, {"no callable", 9, 3, -1, 1, false},
            {"given up after two", 9, 3, 2, 3, false}, {"comes back", 2, 3, 5, 3, true},
            {"other store error", 1, 5, 5, 2, true}, {"not a store error", 9, 0, 5, 1, false}}) {
        SCOPED_TRACE(row.label);
        FailingStore store{row.failures, row.code};
        int asked = 0;
        CommonFactory::RetryCallback retry;
        if (row.patience >= 0)
            retry = [&](QrlMeridiaError_enum error) {
                EXPECT_EQ(static_cast<int>(error), row.code);
                return asked++ < row.patience;
            };
        try {
            EXPECT_NE(createSettings(std::ref(store), retry), nullptr);
            EXPECT_TRUE(row.opens);
        } catch (const QrlMeridiaException& e) {
            EXPECT_FALSE(row.opens);
            EXPECT_EQ(e.code(), QrlMeridiaError_enum::ServerUnreachable);
        }
        EXPECT_EQ(store.attempts, row.attempts);
    }
}

TEST(CreateSettings, logsStoreErrorsForDebuggingAndOthersAsErrors)
{
    const support::LogCapture log;
    FailingStore store{1, 5};
    createSettings(std::ref(store), [](QrlMeridiaError_enum) { return true; });
    EXPECT_TRUE(log.has(5, "Error Code : 5")) << log.text();
    EXPECT_THROW(createSettings(FailingStore{1, 0}, nullptr), QrlMeridiaException);
    EXPECT_TRUE(log.has(2, "Exception caught: no library")) << log.text();
}

} // namespace
} // namespace vx::tarn::common
