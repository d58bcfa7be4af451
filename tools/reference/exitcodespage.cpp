#include "reference/exitcodespage.h"

#include "common/exitstatus/exitstatus.h"
#include "host/exitcode.h"
#include "reference/page.h"
#include "tarnctl/exitcode.h"
#include "vxtl/str.h"

namespace tools {

namespace {

constexpr auto head = R"(# Exit codes

## tarnag.exe

The plug-in writes them into the log behind "Process finished with return code: ". `tarnctl codes` prints them, too.

)";

constexpr auto tableHead = "| Code | Meaning |\n|---|---|\n";

template <typename ExitCode>
std::string section(const std::string& program)
{
    std::string text = "\n## " + program + "\n\n" + tableHead;
    for (int code = 0; const char* words = wordsOf(static_cast<ExitCode>(code)); ++code)
        text += tableRow({std::to_string(code), words});
    return text;
}

} // namespace

std::string exitCodesPage()
{
    std::string page = std::string(head) + tableHead;
    for (const auto& status : vx::tarn::common::exitstatus::all)
        page += tableRow({std::to_string(status.code()), vx::str::toUtf8(status.message())});
    return page + section<tarnctl::ExitCode>("tarnctl.exe") + section<devhost::host::ExitCode>("tarnhost.exe");
}

} // namespace tools
