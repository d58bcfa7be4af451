#pragma once

#include "common/globalatom/iglobalatom.h"

#include <string>

namespace vx::tarn::common {

/// The flag as an atom of the system's global table. Any thread; owns nothing, the atom stays.
class GlobalAtom : public IGlobalAtom {
public:
    explicit GlobalAtom(std::wstring name);

    bool exists() override;
    bool create() override;

private:
    std::wstring m_name;
};

} // namespace vx::tarn::common
