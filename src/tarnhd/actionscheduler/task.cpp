#include "tarnhd/actionscheduler/task.h"

namespace Vx {

Task::~Task() = default;

void FuncTask::run()
{
    m_function();
}

} // namespace Vx

namespace vx::tarn {

void ActionNamedTask::run()
{
    if (m_function)
        m_function();
}

} // namespace vx::tarn
