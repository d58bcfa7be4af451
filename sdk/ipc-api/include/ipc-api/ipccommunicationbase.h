#pragma once

#include <string>

namespace vx::tarn::common {

class IpcLibrary;

/// What both ends of a channel have in common.
class IPCCommunicationBase {
public:
    virtual ~IPCCommunicationBase() = 0;
    IPCCommunicationBase(const IPCCommunicationBase&) = delete;
    IPCCommunicationBase& operator=(const IPCCommunicationBase&) = delete;

protected:
    IPCCommunicationBase(std::string channelName, IpcLibrary& library);

    const std::string m_channelName; ///< as the library takes it
    IpcLibrary& m_library;           ///< borrowed
};

} // namespace vx::tarn::common
