#pragma once

#include "archive/StringTable.h"
#include "window/TreeModel.h"

#include <QStringList>
#include <QTreeView>

#include <optional>

namespace quarry {

/// The tree of folders and queries on the left. Keeps selection, expansion and scroll position when the tree is
/// replaced; unless it is empty, something is always selected. It changes nothing: the model's signals and the context
/// menu say what the user wants.
class TreePane final : public QTreeView {
    Q_OBJECT

public:
    /// `model` must outlive the pane.
    TreePane(TreeModel& model, const StringTable& texts, QWidget* parent = nullptr);

    /// The tree is another one, or nodes came, went or moved. While a title is being typed this waits for its end.
    /// Where the selected nodes went, the nearest one that stays is selected.
    void rebuild();
    /// The node that is shown: the selected one, of several the one that was clicked last. Empty stands for everything.
    [[nodiscard]] QString currentUuid() const;
    /// What commands are about; empty stands for everything.
    [[nodiscard]] QStringList selectedUuids() const;
    /// Ends the typing of a title; what was typed is kept.
    void finishEditing();
    /// Selects that node alone; nothing happens when it is not there.
    void select(const QString& uuid);
    /// Selects that node, or the first one when it is none or not there.
    void selectOrFirst(const std::optional<QString>& uuid);
    /// Selects the next query below the shown node with unread results, or one from the top; false when no other has
    /// any.
    bool selectNextUnread();
    void rename(const QString& uuid);
    /// The folder that something new goes into: the shown folder, or the one of the shown query.
    [[nodiscard]] QString folderForNew() const;
    /// Expanded folders, to be remembered from one start to the next.
    [[nodiscard]] QStringList expanded() const;
    void setExpanded(const QStringList& uuids);

Q_SIGNALS:
    void currentChangedTo(const QString& uuid);
    void contextMenuWanted(const QPoint& globalPosition);

protected:
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;
    [[nodiscard]] QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                                       const QEvent* event) const override;
    using QTreeView::edit;
    bool edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) override;
    void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    /// Its row and those around it, nearest first, then the same of the folders above it.
    [[nodiscard]] static QStringList near(const QModelIndex& index);
    /// As a click without any key: those that happen to be held would add to the selection.
    void selectOnly(const QModelIndex& index);
    void tellCurrent();

    TreeModel& _model;
    QPersistentModelIndex _edited;
    QString _told; ///< What currentChangedTo() said last.
    bool _isRebuilding = false;
    bool _isRebuildDue = false;
};

} // namespace quarry
