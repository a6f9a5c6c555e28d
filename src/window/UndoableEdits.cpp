#include "window/UndoableEdits.h"

#include <QUndoCommand>

namespace quarry {

namespace {

class Command final : public QUndoCommand {
public:
    Command(LiveTree& tree, const QString& text, TreeEdit change, TreeEdit opposite)
        : QUndoCommand(text), _tree(tree), _change(std::move(change)), _opposite(std::move(opposite))
    {
    }
    void redo() override { _tree.edit(_change); }
    void undo() override { _tree.edit(_opposite); }

private:
    LiveTree& _tree;
    TreeEdit _change;
    TreeEdit _opposite;
};

} // namespace

void UndoableEdits::perform(const QString& text, const TreeEdit& change, const TreeEdit& opposite)
{
    _stack.push(new Command(_tree, text, change, opposite)); // The stack's own; pushing it makes the change.
}

void UndoableEdits::performQuietly(const TreeEdit& change)
{
    _tree.edit(change);
}

} // namespace quarry
