#include "agent/LXAppUtils.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <utility>

namespace quarry {

namespace {

constexpr int FirstWithList = 100700;
constexpr int FirstWithStaleEntries = 100800;
constexpr int FirstWithoutStaleEntries = 100900;

QString lastComponent(const QString& path)
{
    return QFileInfo(QDir::cleanPath(path)).fileName();
}

QString bundleNameOf(const QString& path)
{
    return lastComponent(path).remove(QStringLiteral(".app"));
}

bool isUnresolvedItemOf(const LoginItemList::Item& item, const QString& fileName)
{
    return item.path.isEmpty() && item.displayName == QFileInfo(fileName).completeBaseName();
}

} // namespace

LXAppUtils::LXAppUtils(AgentBundle agent, int osVersion, LoginItemList& list, LegacyLoginItems legacy)
    : _agent(std::move(agent)), _osVersion(osVersion), _list(list), _legacy(std::move(legacy))
{
}

bool LXAppUtils::hasList() const
{
    return _osVersion >= FirstWithList;
}

QList<LoginItemRecord> LXAppUtils::loginItems() const
{
    QList<LoginItemRecord> records;
    for (const LoginItemList::Item& item : _list.items()) {
        if (!item.path.isEmpty())
            records.append({item.path, bundleNameOf(item.path)});
    }
    return records;
}

bool LXAppUtils::isMine(const LoginItemList::Item& item, bool strict) const
{
    // Switching an item off may leave nothing of it but its name.
    if (item.path.isEmpty())
        return item.disabledByUser && item.displayName == _agent.name;
    return bundleNameOf(item.path) == _agent.name && (!strict || QDir::cleanPath(item.path) == _agent.path);
}

bool LXAppUtils::isMyAppInLoginItems(bool strict) const
{
    if (!hasList())
        return _legacy.contains(_agent.name);
    const QList<LoginItemList::Item> items = _list.items();
    return std::any_of(items.begin(), items.end(),
                       [&](const LoginItemList::Item& item) { return isMine(item, strict); });
}

void LXAppUtils::setMyAppInLoginItems(bool add)
{
    if (_osVersion >= FirstWithStaleEntries && _osVersion < FirstWithoutStaleEntries)
        removeAppInLoginItemsWithLastPathComponent(_agent.path);
    if (isMyAppInLoginItems())
        return;
    if (hasList())
        _list.append(_agent.path);
    else
        changeLegacyEntry(add);
}

void LXAppUtils::changeLegacyEntry(bool add)
{
    const bool isThere = _legacy.contains(_agent.name);
    if (isThere && !add)
        _legacy.removeFirst(_agent.name);
    else if (!isThere && add)
        _legacy.append(_agent.path);
}

void LXAppUtils::removeMyAppInLoginItems()
{
    removeAnAppInLoginItemsWithAppBundlePath(_agent.path);
}

void LXAppUtils::removeAnAppInLoginItemsWithAppBundlePath(const QString& path)
{
    if (path.isNull())
        return;
    _legacy.removeFirst(_agent.name);
    if (!hasList())
        return;
    if (!QFileInfo::exists(path)) {
        removeItemsOfMissingBundle(path);
        return;
    }
    for (const LoginItemList::Item& item : _list.items()) {
        if (!item.path.isEmpty() && QDir::cleanPath(item.path) == QDir::cleanPath(path)) {
            if (!item.disabledByUser)
                _list.remove(item);
            return;
        }
    }
}

void LXAppUtils::removeItemsOfMissingBundle(const QString& path)
{
    const QString fileName = lastComponent(path);
    for (const LoginItemList::Item& item : _list.items()) {
        if (!item.disabledByUser && (isUnresolvedItemOf(item, fileName) || item.path.contains(fileName)))
            _list.remove(item);
    }
}

void LXAppUtils::removeAppInLoginItemsWithLastPathComponent(const QString& name)
{
    _legacy.removeFirst(name);
    if (!hasList())
        return;
    for (const LoginItemList::Item& item : _list.items()) {
        const bool isNamed = !item.path.isEmpty() && lastComponent(item.path) == name;
        if (!item.disabledByUser && (isNamed || isUnresolvedItemOf(item, name)))
            _list.remove(item);
        if (isNamed)
            return;
    }
}

QString LXAppUtils::aliasDataToPath(const QByteArray& alias)
{
    return pathOfAliasData(alias);
}

} // namespace quarry
