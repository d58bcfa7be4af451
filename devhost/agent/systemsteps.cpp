#include "agent/systemsteps.h"

#include "common/factory/commonfactory.h"
#include "common/reboot/rebootdialog.h"
#include "common/windowsupdates/iwindowsupdates.h"
#include "vxtl/comexception.h"

#include <nlohmann/json.hpp>
#include <windows.h>

#include <objbase.h>

namespace devhost::agent {

using vx::tarn::common::RebootDialog;

SystemSteps::Apartment::Apartment()
{
    if (const auto result = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); FAILED(result))
        VX_THROW_COM(result, L"CoInitializeEx failed");
}

SystemSteps::Apartment::~Apartment()
{
    CoUninitialize();
}

SystemSteps::SystemSteps(vx::tarn::common::CommonFactory& factory) : m_factory(factory) {}

nlohmann::json SystemSteps::perform(SystemStep step)
{
    switch (step) {
    case SystemStep::PauseUpdates: return windowsUpdates().pause().code();
    case SystemStep::ResumeUpdates: return windowsUpdates().resume().code();
    case SystemStep::RestoreUpdates: return windowsUpdates().restore().code();
    case SystemStep::Prompt: return m_factory.createRestart()->showRebootDialog();
    // By name: the object's own operation asks in one session only.
    case SystemStep::PromptSessions: return m_factory.createRestart()->RebootDialog::showRebootDialog();
    case SystemStep::Deploy: break;
    }
    return nullptr;
}

vx::tarn::common::IWindowsUpdates& SystemSteps::windowsUpdates()
{
    if (!m_windowsUpdates)
        m_windowsUpdates = m_factory.createWindowsUpdates();
    return *m_windowsUpdates;
}

} // namespace devhost::agent
