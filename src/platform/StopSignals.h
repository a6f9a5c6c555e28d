#pragma once

#include <atomic>

namespace quarry {

/// The signals that ask a program to end (interrupt, terminate, hang-up), taken as something to wait for instead of
/// something that breaks in. Make one first thing in main(), before any thread starts: threads inherit that these
/// signals are held back. Children that are started later inherit it too. Lives as long as the program.
class StopSignals final {
public:
    StopSignals();

    /// Waits for one. Returns at once when one came already. Answers false when none came until cancel().
    bool wait();
    /// Waits for one more than those that came so far; same answer.
    bool waitForNext();
    /// As if one had come; from any thread.
    void request();
    /// Ends a wait of another thread, now or as soon as it begins. The signals stay held back.
    void cancel();
    /// Whether one has come; asks without waiting. Stays true.
    [[nodiscard]] bool hasCome();

private:
    std::atomic<bool> _come{false};
    std::atomic<bool> _cancelled{false};
};

} // namespace quarry
