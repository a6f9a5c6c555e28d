#include "window/QueryDialogs.h"

#include "exchange/TreeWalk.h"
#include "text/LocalisedFormat.h"
#include "window/FiltersSheet.h"
#include "window/FolderSheet.h"
#include "window/KnownAddresses.h"

#include <QMessageBox>
#include <QPushButton>

#include <limits>
#include <tuple>
#include <utility>

namespace quarry {

namespace {

QList<MemberList::Known> knownQueries(const QueryCorePtr& root)
{
    const QList<QueryCorePtr> queries = queriesBelow(root);
    QList<MemberList::Known> known;
    for (const QueryCorePtr& query : queries)
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
    connect(parts.actions.queryFilters, &QAction::triggered, this,
            [this] { editFilters(_parts.pane.selectedUuids().value(0)); });
    connect(parts.actions.editQuery, &QAction::triggered, this,
            [this] { editQuery(_parts.pane.selectedUuids().value(0)); });
    connect(parts.actions.moveToFolder, &QAction::triggered, this, [this] { moveToFolder(); });
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
                members += queriesBelow(node);
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
            [this, made, folder = _parts.pane.folderForNew()] { add(made->definition().makeNode(), folder); });
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
    connect(made, &QDialog::accepted, this, [this, made, query] {
        if (const QueryCorePtr now = _parts.tree.node(query->UUID()))
            change(now, made->definition());
        else
            offerAnew(*query, made->definition(), QuerySettings::of(*query));
    });
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
    connect(made, &QDialog::accepted, this, [this, made, query] {
        if (const QueryCorePtr now = _parts.tree.node(query->UUID()))
            change(now, made->settings());
        else
            offerAnew(*query, QueryDefinition::of(*query), made->settings());
    });
    made->open();
}

void QueryDialogs::moveToFolder()
{
    const QStringList uuids = _parts.pane.selectedUuids();
    auto* const made = new FolderSheet(_parts.tree.root(), uuids, _parts.texts, _window); // Deletes itself.
    made->setAttribute(Qt::WA_DeleteOnClose);
    connect(made, &QDialog::accepted, this, [this, made, uuids] {
        _parts.edits.move(uuids, made->folderUuid(), std::numeric_limits<qsizetype>::max());
    });
    made->open();
}

void QueryDialogs::add(const QueryCorePtr& node, const QString& folderUuid)
{
    if (!node)
        return;
    _parts.edits.add(node, folderUuid);
    _parts.pane.select(node->UUID());
}

void QueryDialogs::offerAnew(const QueryCore& removed, const QueryDefinition& definition, const QuerySettings& settings)
{
    const QueryCorePtr node = definition.makeNode();
    if (!node)
        return;
    settings.applyTo(*node);
    auto* const box = new QMessageBox(
        QMessageBox::Question, _parts.texts.text(QStringLiteral("210_Title edit query")),
        filledFormat(_parts.texts.text(QStringLiteral("210_Removed meanwhile")), {removed.title().trimmed()}),
        QMessageBox::Yes | QMessageBox::Discard, _window); // Deletes itself.
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setTextFormat(Qt::PlainText);
    box->button(QMessageBox::Yes)->setText(_parts.texts.text(QStringLiteral("210_Add anew")));
    box->setDefaultButton(QMessageBox::Yes);
    box->setEscapeButton(QMessageBox::Discard);
    connect(box, &QDialog::finished, this, [this, node](int answer) {
        if (answer == QMessageBox::Yes)
            add(node, {});
    });
    box->open();
}

void QueryDialogs::change(const QueryCorePtr& query, const QueryDefinition& definition)
{
    const QueryDefinition now = QueryDefinition::of(*query);
    if (definition.looksForTheSame(now) && definition.name == now.name)
        return;
    const QueryRedefinition redefined = redefinition(*query, definition);
    _parts.edits.redefine(query->UUID(), redefined.change, redefined.opposite);
}

void QueryDialogs::change(const QueryCorePtr& query, const QuerySettings& settings)
{
    const QuerySettings former = QuerySettings::of(*query);
    if (settings == former)
        return;
    _parts.edits.redefine(
        query->UUID(), [settings](QueryCore& node) { settings.applyTo(node); },
        [former](QueryCore& node) { former.applyTo(node); });
}

} // namespace quarry
