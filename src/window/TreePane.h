#pragma once

#include "archive/StringTable.h"
#include "window/TreeModel.h"

#include <QStringList>
#include <QTreeView>

namespace quarry {

/// The tree of folders and queries on the left. Keeps selection, expansion and scroll position when the tree is
/// replaced. It changes nothing: the model's signals and the context menu say what the user wants.
class TreePane final : public QTreeView {
    Q_OBJECT

public:
    /// `model` must outlive the pane.
    TreePane(TreeModel& model, const StringTable& texts, QWidget* parent = nullptr);

    /// The tree is another one, or nodes came, went or moved.
    void rebuild();
    /// The current node's UUID; empty: none, which stands for everything.
    [[nodiscard]] QString currentUuid() const;
    [[nodiscard]] QStringList selectedUuids() const;
    void select(const QString& uuid);
    /// Selects that node, or the first one when it is not there.
    void selectOrFirst(const QString& uuid);
    /// Selects the next query below the current one with unread results, or one from the top; false when no other has
    /// any.
    bool selectNextUnread();
    /// The folder that something new goes into: the current folder, or the one of the current query.
    [[nodiscard]] QString folderForNew() const;
    /// Expanded folders, to be remembered from one start to the next.
    [[nodiscard]] QStringList expanded() const;
    void setExpanded(const QStringList& uuids);

Q_SIGNALS:
    void currentChangedTo(const QString& uuid);
    void contextMenuWanted(const QPoint& globalPosition);

protected:
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    TreeModel& _model;
    bool _isRebuilding = false;
};

} // namespace quarry
