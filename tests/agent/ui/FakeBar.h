#pragma once

namespace quarry {

/// Plays a bar that shows status notifier items until it is killed. It prints "asked" when somebody asked whether it
/// shows them, and "item NAME" for each that registers. With "--host" it shows them from the start, without it from
/// the line "host" on.
int runFakeBar(int argc, char** argv);

} // namespace quarry
