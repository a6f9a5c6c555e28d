// The place of a node in the tree: parent, children, key paths, look-ups, and leaving it.

#include "model/PageCacheFiles.h"
#include "model/QueryCore.h"
#include "model/TreeLock.h"
#include "platform/SystemLog.h"

#include <algorithm>
#include <utility>

namespace quarry {

void QueryCore::setChildsFromArchive(QList<QueryCorePtr> childs)
{
    const TreeLock lock;
    _childs = std::move(childs);
    touch();
}

void QueryCore::setServices(const std::shared_ptr<const TreeServices>& services)
{
    const TreeLock lock;
    _services = services;
    for (const QueryCorePtr& child : _childs.value_or(ChildList()))
        child->setServices(services);
}

bool QueryCore::isQueryFolder() const
{
    const TreeLock lock;
    return _fields._isFolder;
}

bool QueryCore::isLeaf() const
{
    return !isQueryFolder();
}

std::optional<QList<QueryCorePtr>> QueryCore::childs() const
{
    const TreeLock lock;
    return _childs;
}

qsizetype QueryCore::numberOfChilds() const
{
    const TreeLock lock;
    return isLeaf() || !_childs ? 0 : _childs->size();
}

void QueryCore::setParent(const QueryCorePtr& parent)
{
    const TreeLock lock;
    _parent = parent;
    touch();
}

QueryCorePtr QueryCore::parent()
{
    {
        const TreeLock lock;
        if (QueryCorePtr known = _parent.lock())
            return known;
    }
    return findParentOfQuery(shared_from_this());
}

QueryCorePtr QueryCore::findParentOfQuery(const QueryCorePtr& node)
{
    std::shared_ptr<const TreeServices> services;
    QStringList components;
    {
        const TreeLock lock;
        services = _services;
        if (node)
            components = node->_fields._keyPath.split(u'.');
    }
    if (components.size() < 2 || !services || !services->findByUuid)
        return nullptr;
    QueryCorePtr found = services->findByUuid(components.at(components.size() - 2));
    if (!found)
        return nullptr;
    const TreeLock lock;
    if (contains(found)) {
        debugLog(QStringLiteral("Key path of query %1 names a node below it").arg(_fields._uuid));
        return nullptr;
    }
    setParent(found);
    return found;
}

void QueryCore::addChild(const QueryCorePtr& child)
{
    insertChild(child, 0); // Index 0 means the end.
}

void QueryCore::insertChild(const QueryCorePtr& child, qint64 atIndex)
{
    const TreeLock lock;
    if (!child || child->contains(shared_from_this())) {
        debugLog(QStringLiteral("Folder %1 was given no node, or one that it stands below").arg(_fields._uuid));
        return;
    }
    if (!_childs)
        _childs.emplace();
    child->_parent = weak_from_this();
    const QString& base = _fields._keyPath.isEmpty() ? _fields._uuid : _fields._keyPath;
    child->_fields._keyPath = base + u'.' + child->_fields._uuid;
    if (_services && child->_services != _services)
        child->setServices(_services);
    const bool inside = atIndex > 0 && atIndex <= _childs->size();
    _childs->insert(inside ? static_cast<qsizetype>(atIndex) : _childs->size(), child);
    child->touch();
    touch();
}

QString QueryCore::keyPath() const
{
    const TreeLock lock;
    return _fields._keyPath;
}

void QueryCore::setKeyPath(const std::optional<QString>& keyPath)
{
    const TreeLock lock;
    _fields._keyPath = keyPath.value_or(QString());
    touch();
}

void QueryCore::removeChild(const QueryCorePtr& child)
{
    if (!child)
        return;
    // The caller may hand in a reference into the very list that the child is removed from.
    const QueryCorePtr kept = child->shared_from_this();
    const TreeLock lock;
    kept->setParent(nullptr);
    if (_childs && _childs->removeAll(kept) > 0)
        touch();
}

void QueryCore::deleteChild(const QueryCorePtr& child)
{
    if (!child)
        return;
    const QueryCorePtr kept = child->shared_from_this();
    const TreeLock lock;
    removeChild(kept);
    kept->delete_();
}

void QueryCore::remove()
{
    const TreeLock lock;
    deletePageCache();
    if (const QueryCorePtr folder = _parent.lock())
        folder->removeChild(shared_from_this());
}

void QueryCore::delete_()
{
    const QueryCorePtr kept = shared_from_this();
    const TreeLock lock;
    deletePageCache();
    if (!_childs)
        return;
    const ChildList childs = std::exchange(*_childs, ChildList());
    for (const QueryCorePtr& child : childs)
        child->delete_();
    touch();
}

void QueryCore::removeResults()
{
    const TreeLock lock;
    deletePageCache();
    if (_fields._hiddenResults)
        _fields._hiddenResults->clear();
    _fields._currentResult.reset();
    _nbUnread = 0;
    touch();
}

void QueryCore::deletePageCache() const
{
    if (_services)
        removeQueryCache(_services->cachesFolder, _fields._uuid);
}

QueryCorePtr QueryCore::findQueryForUUID(const QString& uuid)
{
    const TreeLock lock;
    if (_fields._uuid == uuid)
        return shared_from_this();
    if (isLeaf() || !_childs)
        return nullptr;
    for (const QueryCorePtr& child : std::as_const(*_childs)) {
        if (QueryCorePtr found = child->findQueryForUUID(uuid))
            return found;
    }
    return nullptr;
}

QueryCorePtr QueryCore::nodeForKeyPath(const QString& keyPath)
{
    const TreeLock lock;
    const QStringList components = keyPath.split(u'.');
    if (components.first() != _fields._uuid)
        return nullptr;
    if (components.size() == 1)
        return shared_from_this();
    const ChildList childs = _childs.value_or(ChildList());
    const auto next = std::find_if(childs.begin(), childs.end(), [&components](const QueryCorePtr& child) {
        return child->_fields._uuid == components.at(1);
    });
    return next == childs.end() ? nullptr : (*next)->nodeForKeyPath(components.mid(1).join(u'.'));
}

bool QueryCore::contains(const QueryCorePtr& node) const
{
    if (node.get() == this)
        return true;
    const TreeLock lock;
    const ChildList childs = _childs.value_or(ChildList());
    return std::any_of(childs.begin(), childs.end(),
                       [&node](const QueryCorePtr& child) { return child->contains(node); });
}

} // namespace quarry
