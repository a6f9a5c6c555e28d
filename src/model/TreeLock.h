#pragma once

#include <mutex>

namespace quarry {

/// Holds the one mutex that guards every query tree and its nodes. Every public operation of QueryCore takes it
/// by itself; take it around several operations that must be seen as one. It is recursive; nothing slow (files,
/// network, pauses) happens under it.
class TreeLock final {
public:
    TreeLock();
    TreeLock(const TreeLock&) = delete;
    TreeLock& operator=(const TreeLock&) = delete;

private:
    std::unique_lock<std::recursive_mutex> _lock;
};

} // namespace quarry
