#include "database/RefreshCommit.h"

#include "database/QueryDatabaseEngine.h"

#include <utility>

namespace quarry {

RefreshCommit::RefreshCommit(QueryDatabaseEngine& database, Merge merge) : _database(database), _merge(std::move(merge))
{
}

void RefreshCommit::add(const BroughtUpdate& brought)
{
    const std::lock_guard lock(_mutex);
    _waiting.push_back(brought);
}

QString RefreshCommit::commit()
{
    const std::lock_guard committing(_committing);
    // What an update adds from here on waits for the next commit.
    std::vector<BroughtUpdate> links;
    {
        const std::lock_guard lock(_mutex);
        links = _waiting;
    }
    QString error = _database.edit([&](QueryDatabaseEngine& database) {
        // An empty tree stands for the damaged file then. Saved with nothing in it, it would be all that is left, and
        // the links would be lost; kept, they find their queries when a good file is put in its place.
        if (database.isFileDamaged())
            return QStringLiteral("the database was damaged meanwhile; nothing was saved");
        for (const BroughtUpdate& brought : links) {
            const QueryCorePtr node = database.queryForUUID(brought.queryUuid);
            if (node && node->isLeaf() && node != brought.mergedInto.lock())
                _merge(*node, brought);
        }
        return QString();
    });
    if (error.isEmpty()) {
        const std::lock_guard lock(_mutex);
        _waiting.erase(_waiting.begin(), _waiting.begin() + static_cast<std::ptrdiff_t>(links.size()));
    }
    return error;
}

bool RefreshCommit::isEmpty() const
{
    const std::lock_guard lock(_mutex);
    return _waiting.empty();
}

} // namespace quarry
