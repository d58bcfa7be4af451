#include <exception>
#include <sstream>
#include <stdexcept>
#include <string>
#include <windows.h>

namespace {

struct Made {
    explicit Made(void (*make)()) { make(); }
};

} // namespace

/// Throws, throws again while the first is being handled, and answers whether each handler got its own, and the
/// thread's last error was left alone.
extern "C" __declspec(dllexport) bool throwNested(int value)
{
    bool areOwn = false;
    SetLastError(static_cast<DWORD>(value));
    try {
        try {
            throw value;
        } catch (int outer) {
            try {
                std::ostringstream text;
                text << outer;
                throw std::runtime_error(text.str());
            } catch (const std::exception& inner) {
                areOwn = inner.what() == std::to_string(value);
            }
            throw;
        }
    } catch (int again) {
        areOwn &= again == value;
    }
    areOwn &= GetLastError() == static_cast<DWORD>(value);
    return areOwn && std::uncaught_exceptions() == 0 && !std::current_exception();
}

/// Makes a static object of the function in the first call, by `make`.
extern "C" __declspec(dllexport) void makeOnce(void (*make)())
{
    static const Made made(make);
}
