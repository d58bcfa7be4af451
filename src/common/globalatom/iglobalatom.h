#pragma once

namespace vx::tarn::common {

/// A named flag that outlives the process and lasts until the next boot.
class IGlobalAtom {
public:
    virtual ~IGlobalAtom() = default;
    virtual bool exists() = 0;
    /// True when this call added it; false when it was there or could not be added, which is logged.
    virtual bool create() = 0;
};

} // namespace vx::tarn::common
