#include "common/factory/createsettings.h"

#include "meridia-settings/qrlmeridiaerror.h"

namespace vx::tarn::common {

using logging::Level;
using logging::LogStream;

std::shared_ptr<settings::Settings> createSettings(
    const std::function<std::shared_ptr<settings::Settings>()>& make, const CommonFactory::RetryCallback& retry)
{
    for (bool failed = false; !failed;) {
        try {
            return make();
        } catch (const QrlMeridiaException& e) {
            LogStream(Level::Debug) << e;
            failed = !retry || !retry(e.code());
        } catch (const std::exception& e) {
            LogStream(Level::Error) << "Exception caught: " << What(e);
            failed = true;
        }
    }
    VX_THROW_AS(QrlMeridiaException, L"vx::tarn::common::CommonFactory::createSettings",
        meridia::QrlMeridiaError_enum::ServerUnreachable, std::wstring());
}

} // namespace vx::tarn::common
