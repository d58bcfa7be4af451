#pragma once

namespace devhost::machine {

/// What the process runs on.
enum class System { Wine, Windows };

System thisSystem();

} // namespace devhost::machine
