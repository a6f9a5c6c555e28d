#pragma once

#include "archive/StringTable.h"
#include "model/QueryCore.h"

#include <QDialog>

class QTreeWidget;

namespace quarry {

/// Asks for the folder that nodes are moved into.
class FolderSheet final : public QDialog {
    Q_OBJECT

public:
    /// Offers the top and every folder, but for those that are moved and what stands below them.
    FolderSheet(const QueryCorePtr& root, const QStringList& moved, const StringTable& texts, QWidget* parent);

    /// Empty for the top.
    [[nodiscard]] QString folderUuid() const;

private:
    QTreeWidget* _folders;
};

} // namespace quarry
