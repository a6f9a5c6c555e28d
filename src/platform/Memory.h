#pragma once

namespace quarry {

/// Gives memory that the program freed, and the C library keeps for later, back to the system: for programs that live
/// long and have just let go of something large. Takes some milliseconds; any thread.
void returnFreeMemory();

} // namespace quarry
