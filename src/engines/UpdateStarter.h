#pragma once

#include "model/QueryCore.h"

namespace quarry {

/// What the database asks of the update cycle: to start updates. Both return at once; the updates run on threads
/// of their own and end with "uptDidFinish" and then "DBInternalUpdate" on the process's notification centre, the
/// node as sender.
class UpdateStarter {
public:
    virtual ~UpdateStarter() = default;
    /// Starts the update of an enabled query; nothing for a folder or a paused query.
    virtual void update(const QueryCorePtr& node) = 0;
    /// The same for every enabled child of a folder, in child order, or for one enabled query.
    virtual void updateAll(const QueryCorePtr& node) = 0;
};

} // namespace quarry
