#pragma once

#include <functional>

namespace quarry {

/// Holds the one mutex that guards every query tree and its nodes. Every public operation of QueryCore takes it
/// by itself; take it around several operations that must be seen as one. It is recursive; nothing slow (files,
/// network, pauses) happens under it: hand such work to afterwards().
class TreeLock final {
public:
    TreeLock();
    ~TreeLock();
    TreeLock(const TreeLock&) = delete;
    TreeLock& operator=(const TreeLock&) = delete;

    /// Runs the job on this thread as soon as it holds the lock no more; at once when it does not hold it now.
    /// The job must not throw.
    static void afterwards(std::function<void()> job);

    /// While it lives, the jobs of this thread wait for run() instead, and are dropped without it: for changes that
    /// may be taken back. One at a time on a thread; made, used and destroyed while the thread does not hold the lock.
    class Postponed final {
    public:
        Postponed();
        ~Postponed();
        Postponed(const Postponed&) = delete;
        Postponed& operator=(const Postponed&) = delete;
        void run();
        void drop();
    };
};

} // namespace quarry
