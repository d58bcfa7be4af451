#pragma once

#include "common/process/iprocess.h"

#include <memory>

namespace vx::process {
class Process;
}

namespace vx::tarn::common {

/// Holds the child that the last successful start made; a failed start keeps the one before. The child goes
/// on when this object ends. One thread.
class Process : public IProcess {
public:
    Process();
    ~Process() override;
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    bool start(
        const std::wstring& commandLine, unsigned long flags, process::Redirect redirect, void* userToken) override;
    bool start(const std::wstring& executable, const std::wstring& arguments,
        const process::Credentials& credentials) override;
    void wait() override;
    std::uint32_t getReturnCode() override;
    /// Null before the first start.
    const SharedHandle& getHandle() override;

private:
    std::shared_ptr<process::Process> m_process;
};

} // namespace vx::tarn::common
