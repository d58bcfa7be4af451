#include "machine/taskpaths.h"

#include "vxtl/str.h"

#include <algorithm>
#include <windows.h>

namespace devhost::machine {

std::string joinPath(std::string_view folder, std::string_view name)
{
    std::string path;
    for (const auto part : {folder, name})
        for (std::size_t begin = 0; begin < part.size();) {
            const auto end = std::min(part.find('\\', begin), part.size());
            if (end > begin)
                path.append(rootPath).append(part.substr(begin, end - begin));
            begin = end + 1;
        }
    return path.empty() ? std::string(rootPath) : path;
}

std::string parentPath(std::string_view path)
{
    return std::string(path.substr(0, std::max<std::size_t>(path.rfind('\\'), 1)));
}

std::string nameOf(std::string_view path)
{
    return std::string(path.substr(path.rfind('\\') + 1));
}

bool samePath(std::string_view a, std::string_view b)
{
    const auto wideA = vx::str::fromUtf8(a), wideB = vx::str::fromUtf8(b);
    return CompareStringOrdinal(wideA.c_str(), static_cast<int>(wideA.size()), wideB.c_str(),
               static_cast<int>(wideB.size()), TRUE) == CSTR_EQUAL;
}

bool hasFolder(const MachineState& state, std::string_view path)
{
    return path == rootPath ||
           std::ranges::any_of(state.folders, [&](const TaskFolder& folder) { return samePath(folder.path, path); });
}

ScheduledTask* findTask(MachineState& state, std::string_view path)
{
    const auto task =
        std::ranges::find_if(state.tasks, [&](const ScheduledTask& each) { return samePath(each.path, path); });
    return task == state.tasks.end() ? nullptr : &*task;
}

bool isUsed(const MachineState& state, std::string_view folder)
{
    const auto liesIn = [&](const auto& each) { return samePath(parentPath(each.path), folder); };
    return std::ranges::any_of(state.tasks, liesIn) || std::ranges::any_of(state.folders, liesIn);
}

} // namespace devhost::machine
