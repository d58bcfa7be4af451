#pragma once

#include <string>

namespace vx::tarn::common {

/// Where the agent's files lie. Folders are made when they are asked for; if that fails, which is logged,
/// the path comes back all the same. Any thread. Held by shared pointers to the class itself: there is no
/// virtual destructor.
class ISyncFolders {
public:
    virtual std::wstring getTempFolder() = 0;
    virtual std::wstring getWorkingFolder() = 0;
    virtual std::wstring getDeploymentFolder() = 0;
    virtual std::wstring getPatchesFolder() = 0;
    virtual std::wstring getLogFolder() = 0;
    /// Files are named, not made.
    virtual std::wstring getWindowsPatchDataFile() = 0;
    virtual std::wstring getPackageFile() = 0;
    virtual std::wstring getDeployerExecutable() = 0;

protected:
    ~ISyncFolders() = default;
};

} // namespace vx::tarn::common
