#include "host/bootatom.h"

#include "host/exitcode.h"
#include "host/systemtext.h"

#include <windows.h>

namespace devhost::host {

namespace {
constexpr auto atomName = L"Global\\PostRebootATOM{894D1810-89A9-4363-A8C5-9F429B518809}";
}

bool forgetBoot()
{
    auto atom = GlobalFindAtomW(atomName);
    const bool found = atom != 0;
    // Atoms count their makers: each deletion takes back one.
    for (; atom != 0; atom = GlobalFindAtomW(atomName)) {
        SetLastError(ERROR_SUCCESS);
        GlobalDeleteAtom(atom);
        if (const auto code = GetLastError(); code != ERROR_SUCCESS)
            throw CommandError(ExitCode::Failed, "the boot atom cannot be deleted: " + systemText(code));
    }
    return found;
}

} // namespace devhost::host
