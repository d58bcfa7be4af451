#pragma once

namespace vx::scheduler {

/// Who may reach the product's folder of tasks and the tasks in it: administrators and the local system, fully.
inline constexpr wchar_t folderAccess[] = L"D:(A;;FA;;;BA)(A;;FA;;;SY)";

} // namespace vx::scheduler
