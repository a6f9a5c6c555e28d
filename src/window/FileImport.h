#pragma once

#include "archive/StringTable.h"
#include "window/UndoableEdits.h"

#include <QString>
#include <QStringList>

namespace quarry {

/// Brings exported files into the tree, each as one change that can be undone.
class FileImport final {
public:
    /// All must outlive the object.
    FileImport(const LiveTree& tree, UndoableEdits& edits, FileStore& files, const StringTable& texts)
        : _tree(tree), _edits(edits), _files(files), _texts(texts)
    {
    }

    /// How it went, for a person.
    struct Done {
        bool isDone = false;
        QString text;  ///< What came in, or why nothing did.
        QString first; ///< The UUID of the first node that came in.
    };
    /// Puts everything in the file to the end of that folder; an empty UUID is the top.
    [[nodiscard]] Done importFile(const QString& path, const QString& folderUuid);

private:
    const LiveTree& _tree;
    UndoableEdits& _edits;
    FileStore& _files;
    const StringTable& _texts;
};

} // namespace quarry
