#include "blacklist/BlacklistManager.h"

#include <algorithm>

namespace quarry {

BlacklistManager BlacklistManager::initWithDatabase(const FileStore& files, const QString& path, QString* fault)
{
    const FileStore::ReadResult file = files.read(path);
    QString reason = file.error;
    std::optional<StoredBlacklist> list;
    if (reason.isEmpty() && !file.bytes.isEmpty()) {
        list = unarchivedBlacklist(file.bytes, &reason);
        if (!list)
            reason = QStringLiteral("%1 cannot be understood: %2").arg(path, reason);
    }
    if (fault)
        *fault = list ? QString() : reason;
    return BlacklistManager(std::move(list).value_or(StoredBlacklist()));
}

qsizetype BlacklistManager::addToBlacklist(const BlacklistFilterPtr& filter)
{
    QList<BlacklistFilterPtr>& filters = _bldatabase.filters;
    if (filter)
        filters.append(filter);
    std::stable_sort(filters.begin(), filters.end(),
                     [](const BlacklistFilterPtr& a, const BlacklistFilterPtr& b) { return a->type() < b->type(); });
    const qsizetype index = filter ? filters.indexOf(filter) : -1;
    return index >= 0 ? index : filters.size() - 1;
}

void BlacklistManager::removeFromBlacklist(const BlacklistFilterPtr& filter)
{
    _bldatabase.filters.removeAll(filter);
}

void BlacklistManager::setState(bool state, const BlacklistFilterPtr& filter)
{
    if (filter)
        filter->setState(state);
}

bool BlacklistManager::isAddressFiltered(const QString& address, Logger& log) const
{
    return std::any_of(_bldatabase.filters.begin(), _bldatabase.filters.end(), [&](const BlacklistFilterPtr& filter) {
        return filter->state() && filter->testString(address, log);
    });
}

BlacklistFilterPtr BlacklistManager::filterAtIndex(qsizetype index) const
{
    return index >= 0 && index < filtersCount() ? _bldatabase.filters[index] : nullptr;
}

QList<BlacklistRule> BlacklistManager::rules() const
{
    QList<BlacklistRule> rules;
    for (const BlacklistFilterPtr& filter : _bldatabase.filters)
        rules.append(filter->fields());
    return rules;
}

bool BlacklistManager::writeListAtPath(FileStore& files, const QString& path, QString* error) const
{
    const QByteArray bytes = archivedBlacklist(_bldatabase);
    const QString fault = bytes.isEmpty() ? QStringLiteral("the list of rules cannot be written")
                                          : files.replace(path, QStringLiteral(".blacklist"), 0660, bytes).error;
    if (error)
        *error = fault;
    return fault.isEmpty();
}

} // namespace quarry
