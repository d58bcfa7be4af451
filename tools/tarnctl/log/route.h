#pragma once

#include "logreading/linesplitter.h"

namespace tarnctl::log {

class Filter;
class Output;

/// Where the lines of a log go: through the filter to the output. A line's record is read only where one of them looks
/// at it. Both are borrowed.
logreading::LineSplitter::Sink route(Filter& filter, Output& output);

} // namespace tarnctl::log
