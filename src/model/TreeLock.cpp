#include "model/TreeLock.h"

namespace quarry {

static std::recursive_mutex& treeMutex()
{
    static std::recursive_mutex mutex;
    return mutex;
}

TreeLock::TreeLock() : _lock(treeMutex()) {}

} // namespace quarry
