#pragma once

#include <chrono>

namespace quarry {

/// The signals that ask a program to end (interrupt, terminate, hang-up), taken as something to wait for instead of
/// something that breaks in. Make one first thing in main(), before any thread starts: threads inherit that these
/// signals are held back. Children that are started later inherit it too. Lives as long as the program.
class StopSignals final {
public:
    StopSignals();

    /// Waits for one. Returns at once when one came already.
    void wait();
    /// Whether one has come; asks without waiting. Stays true.
    [[nodiscard]] bool hasCome();

private:
    bool _come = false;
};

} // namespace quarry
