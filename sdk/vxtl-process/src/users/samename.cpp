#include "users/samename.h"

#include <windows.h>

namespace vx::users {

bool isSameName(std::wstring_view left, std::wstring_view right)
{
    return CompareStringOrdinal(left.data(), static_cast<int>(left.size()), right.data(),
               static_cast<int>(right.size()), TRUE) == CSTR_EQUAL;
}

} // namespace vx::users
