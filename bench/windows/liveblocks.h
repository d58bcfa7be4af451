#pragma once

/// Blocks of memory that the program has taken with `new` and not given back, of all threads.
long liveBlocks();
