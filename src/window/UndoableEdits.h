#pragma once

#include "session/LiveTree.h"
#include "session/TreeEdits.h"

#include <QUndoStack>

namespace quarry {

/// Makes edits that the user can take back. Every edit of the window goes through here. Main thread only.
class UndoableEdits final {
public:
    /// `tree` must outlive the object.
    explicit UndoableEdits(LiveTree& tree);

    /// `text` is what "Undo" says.
    void perform(const QString& text, const edits::Reversible& change);
    /// For changes that nobody would look for under "Undo", such as reading a result.
    void performQuietly(const TreeEdit& change);
    [[nodiscard]] QUndoStack& stack() { return _stack; }

private:
    LiveTree& _tree;
    QUndoStack _stack;
};

} // namespace quarry
