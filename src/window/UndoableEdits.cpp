#include "window/UndoableEdits.h"

#include <QUndoCommand>

namespace quarry {

namespace {

/// Edits hold the keys of the results, and the nodes, that they are about: as many as the user may still look for.
constexpr int UndoLimit = 100;

class Command final : public QUndoCommand {
public:
    Command(LiveTree& tree, const QString& text, edits::Reversible change)
        : QUndoCommand(text), _tree(tree), _change(std::move(change))
    {
    }
    ~Command() override
    {
        _tree.retire(std::move(_change.change));
        _tree.retire(std::move(_change.opposite));
    }
    Command(const Command&) = delete;
    Command& operator=(const Command&) = delete;
    void redo() override { _tree.edit(_change.change); }
    void undo() override { _tree.edit(_change.opposite); }

private:
    LiveTree& _tree;
    edits::Reversible _change;
};

} // namespace

UndoableEdits::UndoableEdits(LiveTree& tree) : _tree(tree)
{
    _stack.setUndoLimit(UndoLimit);
}

void UndoableEdits::perform(const QString& text, const edits::Reversible& change)
{
    _stack.push(new Command(_tree, text, change)); // The stack's own; pushing it makes the change.
}

void UndoableEdits::performQuietly(const TreeEdit& change)
{
    _tree.edit(change);
}

} // namespace quarry
