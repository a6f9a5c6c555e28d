#pragma once

#include "archive/StringTable.h"
#include "window/ResultModel.h"
#include "window/UndoableEdits.h"

namespace quarry {

/// What the user does to results. Takes rows of a model and leaves them as they are: the tree says what changed.
class ResultEdits final {
public:
    /// All must outlive the object.
    ResultEdits(const LiveTree& tree, UndoableEdits& edits, const StringTable& texts)
        : _tree(tree), _edits(edits), _texts(texts)
    {
    }

    void setRead(bool read, const ResultModel& model, const QModelIndexList& rows);
    /// Opening a result marks it without a word.
    void markOpened(const ResultModel& model, const QModelIndexList& rows);
    /// As markOpened; where they are listed does not matter.
    void markSeen(const ResultSelection& results);
    /// Everything in the queries, and below the folders.
    void markAllRead(const QList<QueryCorePtr>& nodes);
    void setHidden(bool hidden, const ResultModel& model, const QModelIndexList& rows);
    /// 0 takes the rating away.
    void setRating(qint64 rating, const ResultModel& model, const QModelIndexList& rows);
    /// The hosts of these results, each from the query that found it.
    void excludeHosts(const ResultModel& model, const QModelIndexList& rows);

private:
    const LiveTree& _tree;
    UndoableEdits& _edits;
    const StringTable& _texts;
};

} // namespace quarry
