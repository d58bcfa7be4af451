#include "tarnhd/actions/action.h"

#include "common/factory/commonfactory.h"
#include "common/updaterlauncher/iupdaterlauncher.h"

namespace vx::tarn {

Action::Action(common::CommonFactory* commonFactory, const TarnpatchSettings* settings)
    : m_commonFactory(commonFactory), m_settings(settings), m_updaterLauncher(commonFactory->createUpdaterLauncher())
{}

Action::~Action() = default;

} // namespace vx::tarn
