#pragma once

#include "agent/AgentBundle.h"
#include "agent/LegacyLoginItems.h"
#include "platform/LoginItemList.h"

#include <QByteArray>
#include <QList>
#include <QString>

namespace quarry {

/// One login item that leads to a bundle.
struct LoginItemRecord {
    QString path;       ///< "path"
    QString bundleName; ///< "bundleName": the last path component with every ".app" removed.
};

/// Puts the agent among the programs that start when the user logs in, finds it there, and takes it out again. Two
/// lists are kept in step: the desktop's and, for systems before 10.7.0 or what they left behind, the older one. An
/// item that the user switched off in the desktop's settings counts as present and is left alone. Every failure counts
/// as no match. Main thread only.
class LXAppUtils final {
public:
    /// The list must outlive the object.
    LXAppUtils(AgentBundle agent, int osVersion, LoginItemList& list, LegacyLoginItems legacy);

    [[nodiscard]] QList<LoginItemRecord> loginItems() const;
    /// By the bundle's name: an agent at another path counts. With `strict` it does not.
    [[nodiscard]] bool isMyAppInLoginItems(bool strict = false) const;
    /// Adds the agent when it is not a login item yet; with false, takes its older entry out where those count.
    void setMyAppInLoginItems(bool add);
    void removeMyAppInLoginItems();
    /// Nothing for a null path. The items of a bundle that is gone are matched by its file's name.
    void removeAnAppInLoginItemsWithAppBundlePath(const QString& path);
    void removeAppInLoginItemsWithLastPathComponent(const QString& name);
    /// Null for empty bytes.
    [[nodiscard]] static QString aliasDataToPath(const QByteArray& alias);

private:
    [[nodiscard]] bool hasList() const;
    [[nodiscard]] bool isMine(const LoginItemList::Item& item, bool strict) const;
    void changeLegacyEntry(bool add);
    void removeItemsOfMissingBundle(const QString& path);

    AgentBundle _agent;
    int _osVersion;
    LoginItemList& _list;
    LegacyLoginItems _legacy;
};

} // namespace quarry
