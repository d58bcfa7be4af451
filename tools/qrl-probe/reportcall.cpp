#include "qrl-probe/reportcall.h"

namespace tools::qrlprobe {

std::uint32_t callReport(vx::qrl::ReportPluginStateFunction report, const char* name, std::uint32_t state)
{
    std::uint32_t taken = 0;
    // Aligned as compilers with a stricter belief than four bytes want it, so that no host fails by the probe's doing.
    asm volatile("movl %%esp, %%esi\n\t"
                 "andl $-16, %%esp\n\t"
                 "subl $8, %%esp\n\t"
                 "pushl %[state]\n\t"
                 "pushl %[name]\n\t"
                 "movl %%esp, %%edi\n\t"
                 "call *%[report]\n\t"
                 "movl %%esp, %[taken]\n\t"
                 "subl %%edi, %[taken]\n\t"
                 "movl %%esi, %%esp"
                 : [taken] "=a"(taken), [name] "+c"(name), [state] "+d"(state)
                 : [report] "a"(report)
                 : "esi", "edi", "memory", "cc");
    return taken;
}

} // namespace tools::qrlprobe
