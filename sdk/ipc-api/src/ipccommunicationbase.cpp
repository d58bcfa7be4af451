#include "ipc-api/ipccommunicationbase.h"

#include <utility>

namespace vx::tarn::common {

IPCCommunicationBase::IPCCommunicationBase(std::string channelName, IpcLibrary& library)
    : m_channelName(std::move(channelName)), m_library(library)
{}

IPCCommunicationBase::~IPCCommunicationBase() = default;

} // namespace vx::tarn::common
