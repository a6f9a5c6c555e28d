#include "window/QueryDialogs.h"

#include "window/FiltersSheet.h"
#include "window/KnownAddresses.h"

#include <tuple>
#include <utility>

namespace quarry {

namespace {

/// Queries at and below the node, in the order of the tree.
void collectQueries(const QueryCorePtr& node, QList<QueryCorePtr>& queries)
{
    if (!node->isQueryFolder())
        queries.append(node);
    const QList<QueryCorePtr> childs = node->childs().value_or(QList<QueryCorePtr>());
    for (const QueryCorePtr& child : childs)
        collectQueries(child, queries);
}

QList<MemberList::Known> knownQueries(const QueryCorePtr& root)
{
    QList<QueryCorePtr> queries;
    collectQueries(root, queries);
    QList<MemberList::Known> known;
    for (const QueryCorePtr& query : std::as_const(queries))
        known.append({query->title().trimmed(), QueryDefinition::of(*query).texts});
    return known;
}

} // namespace

QueryDialogs::QueryDialogs(Parts parts, QWidget* window) : QObject(window), _parts(parts), _window(window)
{
    using Form = QuerySheet::Form;
    const std::pair<QAction*, Form> makers[] = {{parts.actions.newQuery, Form::Plain},
                                                {parts.actions.newAdvancedQuery, Form::Advanced},
                                                {parts.actions.newCombinedQuery, Form::Combined}};
    for (const auto& [action, form] : makers)
        connect(action, &QAction::triggered, this, [this, form = form] { makeNew(form); });
    connect(parts.actions.queryFilters, &QAction::triggered, this, [this] { editFilters(_parts.pane.currentUuid()); });
    connect(parts.actions.editQuery, &QAction::triggered, this, [this] { editQuery(_parts.pane.currentUuid()); });
}

QuerySheet* QueryDialogs::sheet(QuerySheet::Form form, const QueryCorePtr& query)
{
    const bool isRestricting = form == QuerySheet::Form::Advanced || form == QuerySheet::Form::Combined;
    QuerySheet::Known known;
    if (isRestricting)
        known.addresses = knownAddresses(_parts.tree.root(), query);
    if (form == QuerySheet::Form::Combined)
        known.queries = knownQueries(_parts.tree.root());
    auto* const made = new QuerySheet(form, known, _parts.texts, _window); // Deletes itself.
    made->setAttribute(Qt::WA_DeleteOnClose);
    return made;
}

QueryDefinition QueryDialogs::combinationOfSelected() const
{
    QList<QueryCorePtr> members;
    const QStringList selected = _parts.pane.selectedUuids();
    if (selected.size() > 1) {
        for (const QString& uuid : selected) {
            if (const QueryCorePtr node = _parts.tree.node(uuid))
                collectQueries(node, members);
        }
    }
    QueryDefinition combination;
    bool isFirst = true;
    bool doAgree = true;
    for (const QueryCorePtr& member : std::as_const(members)) {
        const QueryDefinition each = QueryDefinition::of(*member);
        combination.texts += each.texts;
        // One set of restrictions serves for all. Those of the members are taken over where they agree.
        if (isFirst)
            std::tie(combination.words, combination.site, combination.urlExpression) =
                std::tie(each.words, each.site, each.urlExpression);
        doAgree = doAgree && std::tie(combination.words, combination.site, combination.urlExpression) ==
                                 std::tie(each.words, each.site, each.urlExpression);
        isFirst = false;
    }
    if (!doAgree) {
        const QStringList texts = combination.texts;
        combination = {};
        combination.texts = texts;
    }
    combination.isCombined = true;
    return combination;
}

void QueryDialogs::makeNew(QuerySheet::Form form)
{
    if (_parts.tree.safety() == LiveTree::Safety::Loading)
        return; // Nothing could be added yet.
    QuerySheet* const made = sheet(form, nullptr);
    if (form == QuerySheet::Form::Combined)
        made->setDefinition(combinationOfSelected(), true);
    connect(made, &QDialog::accepted, this,
            [this, made, folder = _parts.pane.folderForNew()] { add(made->definition(), folder); });
    made->open();
}

void QueryDialogs::editQuery(const QString& uuid)
{
    const QueryCorePtr query = _parts.tree.node(uuid);
    if (!query || query->isQueryFolder())
        return;
    QuerySheet* const made =
        sheet(query->isCombinedQuery() ? QuerySheet::Form::Combined : QuerySheet::Form::Advanced, query);
    made->setDefinition(QueryDefinition::of(*query), false);
    connect(made, &QDialog::accepted, this, [this, made, uuid] { change(uuid, made->definition()); });
    made->open();
}

void QueryDialogs::editFilters(const QString& uuid)
{
    const QueryCorePtr query = _parts.tree.node(uuid);
    if (!query || query->isQueryFolder())
        return;
    auto* const made = new FiltersSheet({query->title().trimmed(), query->query().trimmed(), // Deletes itself.
                                         knownAddresses(query, query)},
                                        _parts.texts, _window);
    made->setAttribute(Qt::WA_DeleteOnClose);
    made->setSettings(QuerySettings::of(*query));
    connect(made, &QDialog::accepted, this, [this, made, uuid] { change(uuid, made->settings()); });
    made->open();
}

void QueryDialogs::add(const QueryDefinition& definition, const QString& folderUuid)
{
    const QueryCorePtr node = definition.makeNode();
    if (!node)
        return;
    _parts.edits.add(node, folderUuid);
    _parts.pane.select(node->UUID());
}

void QueryDialogs::change(const QString& uuid, const QueryDefinition& definition)
{
    const QueryCorePtr query = _parts.tree.node(uuid);
    if (!query)
        return; // Another program took it away meanwhile.
    const QueryDefinition now = QueryDefinition::of(*query);
    if (definition.looksForTheSame(now) && definition.name == now.name)
        return;
    const QueryRedefinition redefined = redefinition(*query, definition);
    _parts.edits.redefine(uuid, redefined.change, redefined.opposite);
}

void QueryDialogs::change(const QString& uuid, const QuerySettings& settings)
{
    if (const QueryCorePtr query = _parts.tree.node(uuid))
        _parts.edits.redefine(
            uuid, [settings](QueryCore& node) { settings.applyTo(node); },
            [former = QuerySettings::of(*query)](QueryCore& node) { former.applyTo(node); });
}

} // namespace quarry
