#pragma once

#include "archive/StringTable.h"
#include "session/LiveTree.h"
#include "session/QuerySettings.h"
#include "window/QuerySheet.h"
#include "window/TreeNodeEdits.h"
#include "window/TreePane.h"
#include "window/WindowActions.h"

#include <QObject>

namespace quarry {

/// Opens the sheets in which queries are made, changed and moved, and makes the changes when they are accepted.
class QueryDialogs final : public QObject {
    Q_OBJECT

public:
    struct Parts {
        const LiveTree& tree;
        TreeNodeEdits& edits;
        TreePane& pane;
        WindowActions& actions;
        const StringTable& texts;
    };
    /// The parts must outlive the object. The sheets belong to `window`.
    QueryDialogs(Parts parts, QWidget* window);

    void makeNew(QuerySheet::Form form);
    /// Nothing for a folder, or a node that is not there.
    void editQuery(const QString& uuid);
    void editFilters(const QString& uuid);

private:
    [[nodiscard]] QuerySheet* sheet(QuerySheet::Form form, const QueryCorePtr& query);
    /// What a new combined query begins with: the queries that are selected.
    [[nodiscard]] QueryDefinition combinationOfSelected() const;
    void moveToFolder();
    /// Nothing for none.
    void add(const QueryCorePtr& node, const QString& folderUuid);
    /// Another program removed the query while its sheet was open: what was typed may become a new one.
    void offerAnew(const QueryCore& removed, const QueryDefinition& definition, const QuerySettings& settings);
    void change(const QueryCorePtr& query, const QueryDefinition& definition);
    void change(const QueryCorePtr& query, const QuerySettings& settings);

    Parts _parts;
    QWidget* _window;
};

} // namespace quarry
