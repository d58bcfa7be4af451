#include "logging/functionname.h"

#include <gtest/gtest.h>

namespace vx::logging {
namespace {

TEST(FunctionName, cutsTheQualifiedNameOut)
{
    struct Case {
        const char* pretty;
        const char* name;
    };
    const Case cases[] = {
        {"void f()", "f"},
        {"int main(int, char**)", "main"},
        {"virtual void vx::scheduler::Task::setTriggers(const Triggers&)", "vx::scheduler::Task::setTriggers"},
        {"vx::Event::Event(bool)", "vx::Event::Event"},
        {"std::map<int, std::function<void(int)> > vx::make(std::string)", "vx::make"},
        {"const char* vx::text(int) const", "vx::text"},
        {"int* const& vx::reference()", "vx::reference"},
        {"char &vx::attached()", "vx::attached"},
        {"void vx::{anonymous}::f(int)", "vx::`anonymous-namespace'::f"},
        {"void vx::(anonymous namespace)::f(int)", "vx::`anonymous-namespace'::f"},
        {"T vx::get(const K&) [with T = int; K = std::pair<int, int>]", "vx::get"},
    };
    for (const Case& c : cases)
        EXPECT_STREQ(FunctionName(c.pretty).c_str(), c.name) << c.pretty;
}

TEST(FunctionName, cutsANameThatIsTooLong)
{
    EXPECT_EQ(FunctionName("void " + std::string(400, 'n') + "()").view().size(), 255u);
}

} // namespace
} // namespace vx::logging
