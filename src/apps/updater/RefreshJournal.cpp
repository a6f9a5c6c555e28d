#include "apps/updater/RefreshJournal.h"

namespace quarry {

static void mergeAgain(QueryCore& node, const BroughtUpdate& brought, const RefreshJournal::Merging& merging)
{
    // A save that came between the links' merge and their entry here has them in the file already.
    if (node.date() != brought.date)
        mergeIntoQuery(node, brought.asked, brought.links, brought.date, merging.numberOfNewLinks, merging.hooks);
}

RefreshJournal::RefreshJournal(QueryDatabaseEngine& database, RefreshProgress& progress, Merging merging,
                               std::chrono::milliseconds every)
    : _progress(progress),
      _commit(database, [merging = std::move(merging)](
                            QueryCore& node, const BroughtUpdate& brought) { mergeAgain(node, brought, merging); }),
      _saver([this, every] { saveNowAndThen(every); })
{
}

RefreshJournal::~RefreshJournal()
{
    if (_saver.joinable())
        static_cast<void>(finish());
}

bool RefreshJournal::finish()
{
    {
        const std::lock_guard lock(_mutex);
        _isFinishing = true;
    }
    _finishing.notify_all();
    if (_saver.joinable())
        _saver.join();
    return commit();
}

void RefreshJournal::saveNowAndThen(std::chrono::milliseconds every)
{
    std::unique_lock lock(_mutex);
    while (!_finishing.wait_for(lock, every, [this] { return _isFinishing; })) {
        lock.unlock();
        commit();
        lock.lock();
    }
}

bool RefreshJournal::commit()
{
    if (_commit.isEmpty())
        return true;
    const QString error = _commit.commit();
    if (error.isEmpty())
        _progress.saved();
    else
        _progress.saveFailed(error);
    return error.isEmpty();
}

} // namespace quarry
