#include "window/ResultsPane.h"

#include "model/ResultComparator.h"
#include "text/LocalisedFormat.h"
#include "window/ResultDelegate.h"
#include "window/ResultTable.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QScrollBar>
#include <QTableView>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <array>
#include <vector>

namespace quarry {

namespace {

struct NamedOrder {
    ResultOrder order;
    const char16_t* key;
};
constexpr std::array Orders = {
    NamedOrder{NewestFirst, u"202_Order newest"}, NamedOrder{OldestFirst, u"202_Order oldest"},
    NamedOrder{ByRank, u"202_Order rank"},        NamedOrder{UnreadFirst, u"202_Order unread"},
    NamedOrder{ByAddress, u"202_Order address"},  NamedOrder{ByTitle, u"202_Order title"},
    NamedOrder{ByRating, u"202_Order rating"}};

/// The order that a click on a column's header gives, and the arrow it shows.
struct ColumnOrder {
    ResultModel::Column column;
    ResultOrder order;
    Qt::SortOrder arrow;
};
constexpr std::array ColumnOrders = {ColumnOrder{ResultModel::TitleColumn, ByTitle, Qt::AscendingOrder},
                                     ColumnOrder{ResultModel::RankColumn, ByRank, Qt::AscendingOrder},
                                     ColumnOrder{ResultModel::FoundColumn, NewestFirst, Qt::DescendingOrder},
                                     ColumnOrder{ResultModel::FoundColumn, OldestFirst, Qt::AscendingOrder},
                                     ColumnOrder{ResultModel::RatingColumn, ByRating, Qt::DescendingOrder}};

} // namespace

ResultsPane::ResultsPane(EventTimers& timers, const StringTable& texts, QWidget* parent)
    : QWidget(parent), _texts(texts), _model(texts),
      _loader(timers, [this](ResultListing listing) { take(std::move(listing)); })
{
    makeControls(texts);
    makeList(texts);
    showOrder();
    const int gap = style()->pixelMetric(QStyle::PM_FocusFrameHMargin) * 2;
    auto* const controls = new QHBoxLayout;
    controls->setContentsMargins(gap, gap, gap, 0);
    controls->addWidget(_search, 1);
    controls->addWidget(_order);
    controls->addWidget(_hidden);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(controls);
    layout->addWidget(_list, 1);
    layout->addWidget(_count);
}

void ResultsPane::makeControls(const StringTable& texts)
{
    _search = new QLineEdit(this);
    _search->setPlaceholderText(texts.text(QStringLiteral("202_Search")));
    _search->setAccessibleName(texts.text(QStringLiteral("202_Search")));
    _search->setClearButtonEnabled(true);
    connect(_search, &QLineEdit::textChanged, this, [this] { load(); });

    _order = new QComboBox(this);
    _order->setAccessibleName(texts.text(QStringLiteral("202_Order")));
    _order->setToolTip(texts.text(QStringLiteral("202_Order")));
    for (const NamedOrder& named : Orders)
        _order->addItem(texts.text(QString::fromUtf16(named.key)), int(named.order));
    connect(_order, &QComboBox::currentIndexChanged, this, [this] {
        showOrder();
        load();
    });

    _hidden = new QToolButton(this);
    _hidden->setText(texts.text(QStringLiteral("202_Show hidden")));
    _hidden->setToolTip(texts.text(QStringLiteral("202_Show hidden tip")));
    _hidden->setCheckable(true);
    connect(_hidden, &QToolButton::toggled, this, [this] { load(); });

    _count = new QLabel(this);
    _count->setIndent(fontMetrics().averageCharWidth());
}

void ResultsPane::makeList(const StringTable& texts)
{
    auto* const table = new ResultTable(this);
    _list = table;
    _list->setModel(&_model);
    auto* const delegate = new ResultDelegate(_list);
    _list->setItemDelegate(delegate);
    connect(delegate, &ResultDelegate::ratingClicked, this, &ResultsPane::ratingWanted);
    _list->setAccessibleName(texts.text(QStringLiteral("202_Results")));
    _list->horizontalHeader()->setSectionResizeMode(QHeaderView::Interactive);
    _list->horizontalHeader()->setSectionResizeMode(ResultModel::TitleColumn, QHeaderView::Stretch);
    _list->horizontalHeader()->setHighlightSections(false);
    _list->horizontalHeader()->setSectionsClickable(true);
    _list->horizontalHeader()->setSortIndicatorShown(true); // The widths below leave room for it.
    _list->horizontalHeader()->setDefaultAlignment(Qt::AlignLeading | Qt::AlignVCenter);
    const QFontMetrics metrics(_list->font());
    const auto widthFor = [this, &metrics](int column, const QString& text) {
        _list->setColumnWidth(column, std::max(metrics.horizontalAdvance(text) + 2 * metrics.averageCharWidth(),
                                               _list->horizontalHeader()->sectionSizeHint(column)));
    };
    widthFor(ResultModel::ServiceColumn, QStringLiteral("MMMMMMMM"));
    widthFor(ResultModel::RankColumn, QStringLiteral("MMMM"));
    widthFor(ResultModel::FoundColumn, QStringLiteral("00. MMM 0000"));
    _list->setColumnWidth(ResultModel::RatingColumn,
                          std::max(ResultDelegate::ratingWidth(_list->font()),
                                   _list->horizontalHeader()->sectionSizeHint(ResultModel::RatingColumn)));
    connect(_list, &QTableView::customContextMenuRequested, this,
            [this](const QPoint& at) { Q_EMIT contextMenuWanted(_list->viewport()->mapToGlobal(at)); });
    connect(table, &ResultTable::openWanted, this, &ResultsPane::openWanted);
    connect(_list->horizontalHeader(), &QHeaderView::sectionClicked, this, [this](int column) { sortBy(column); });
    connect(_list->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
        if (!_isTaking)
            Q_EMIT selectedResultsChanged();
    });
    _empty = new QLabel(_list->viewport());
    _empty->setObjectName(QStringLiteral("whyEmpty"));
    _empty->setAlignment(Qt::AlignCenter);
    _empty->setWordWrap(true);
    _empty->setForegroundRole(QPalette::PlaceholderText);
    (new QVBoxLayout(_list->viewport()))->addWidget(_empty);
}

void ResultsPane::show(const QueryCorePtr& node, qint64 expected)
{
    _node = node;
    _expected = expected;
    _loader.forget();
    load();
}

void ResultsPane::load()
{
    _loader.load({_node, _order->currentData().toInt(), showsHidden(), _search->text(), _expected});
}

void ResultsPane::take(ResultListing listing)
{
    const QString uuid = _node ? _node->UUID() : QString();
    const Shown shown = {uuid, showsHidden(), order(), _search->text()};
    const bool isSameList = shown.node == _shown.node && shown.hidden == _shown.hidden;
    const Place place = isSameList ? placeNow(shown == _shown) : Place();
    _shown = shown;
    _isTaking = true;
    ResultListing before = _model.setListing(std::move(listing));
    goBackTo(place, before);
    _loader.retire(std::move(before));
    _isTaking = false;
    sayCount();
    if (std::exchange(_wantsUnread, false))
        selectNextUnread();
    Q_EMIT selectedResultsChanged();
}

ResultsPane::Place ResultsPane::placeNow(bool isSameOrder) const
{
    Place place;
    const QModelIndexList selected = selectedRows();
    place.selected = _model.selection(selected);
    for (const QModelIndex& index : selected)
        place.rows.push_back(index.row());
    std::sort(place.rows.begin(), place.rows.end());
    place.current = currentRow().row();
    place.top = _list->rowAt(0);
    place.otherwiseTop = isSameOrder ? place.top : 0;
    const int bottom = _list->rowAt(_list->viewport()->height() - 1);
    if (std::binary_search(place.rows.begin(), place.rows.end(), place.current) && place.current >= place.top &&
        (bottom < 0 || place.current <= bottom))
        place.steady.push_back(place.current);
    if (isSameOrder && place.top > 0) // At the very top, what is new above is to be seen.
        place.steady.push_back(place.top);
    return place;
}

void ResultsPane::goBackTo(const Place& place, const ResultListing& before)
{
    const auto find = [&](int row) {
        const ResultListing::Row& at = before.row(static_cast<std::size_t>(row));
        return _model.indexOf(before.queryUuid(at), ResultKeys::keyOf(at.record));
    };
    const QItemSelection rows = rowsOf(place.selected);
    QItemSelectionModel& selection = *_list->selectionModel();
    const QModelIndex current = place.current < 0 ? QModelIndex() : find(place.current);
    if (current.isValid()) {
        selection.setCurrentIndex(current, QItemSelectionModel::NoUpdate);
    } else if (place.current >= 0 && _model.rowCount() > 0) {
        // What was current went. What took the place of the first that went is next, so that keys go on from there.
        const int next = place.rows.empty() ? place.current : place.rows.front();
        const QModelIndex there = _model.index(std::min(next, _model.rowCount() - 1), 0);
        if (!rows.isEmpty())
            selection.setCurrentIndex(rows.constFirst().topLeft(), QItemSelectionModel::NoUpdate);
        else if (place.rows.empty())
            selection.setCurrentIndex(there, QItemSelectionModel::NoUpdate);
        else
            selectRow(there.row());
    }
    selection.select(rows, QItemSelectionModel::Select);
    _list->doItemsLayout(); // Else the scroll bar goes by as many rows as there were before.
    int top = place.otherwiseTop;
    for (const int row : place.steady) {
        if (const QModelIndex found = find(row); found.isValid()) {
            top = found.row() - (row - place.top);
            break;
        }
    }
    _list->verticalScrollBar()->setValue(top);
}

QItemSelection ResultsPane::rowsOf(const ResultSelection& results) const
{
    QItemSelection rows;
    if (results.isEmpty())
        return rows;
    const ResultListing& listing = _model.listing();
    std::vector<const ResultKeys*> wanted; // By the number of the query: a million rows are asked for it.
    for (const QString& uuid : listing.queries()) {
        const auto keys = results.constFind(uuid);
        wanted.push_back(keys == results.constEnd() ? nullptr : &*keys);
    }
    const auto isWanted = [&](const ResultListing::Row& row) {
        const ResultKeys* const keys = wanted[row.query];
        return keys && keys->contains(row.record);
    };
    for (std::size_t row = 0; row < listing.size(); ++row) {
        if (!isWanted(listing.row(row)))
            continue;
        const std::size_t first = row;
        while (row + 1 < listing.size() && isWanted(listing.row(row + 1)))
            ++row;
        rows.append(QItemSelectionRange(_model.index(static_cast<int>(first), 0),
                                        _model.index(static_cast<int>(row), ResultModel::ColumnCount - 1)));
    }
    return rows;
}

void ResultsPane::sayCount()
{
    const QString number = QLocale().toString(_model.rowCount());
    _count->setText(filledFormat(_texts.text(_model.rowCount() == 1 ? QStringLiteral("202_One result")
                                                                    : QStringLiteral("202_Number of results")),
                                 {number}));
    const char16_t* const why = !_search->text().isEmpty() ? u"202_Empty search"
                                : showsHidden()            ? u"202_Empty hidden"
                                                           : u"202_Empty";
    _empty->setText(_model.rowCount() == 0 ? _texts.text(QString::fromUtf16(why)) : QString());
}

QModelIndexList ResultsPane::selectedRows() const
{
    return _list->selectionModel()->selectedRows();
}

QModelIndex ResultsPane::currentRow() const
{
    return _list->currentIndex();
}

bool ResultsPane::showsHidden() const
{
    return _hidden->isChecked();
}

bool ResultsPane::selectNextUnread()
{
    if (showsHidden()) {
        _hidden->setChecked(false);
        if (_loader.isLoading()) {
            _wantsUnread = true;
            return true;
        }
    }
    const int rows = _model.rowCount();
    // A list that got the focus has a current row before anything is selected.
    const bool isSelected = _list->selectionModel()->isRowSelected(currentRow().row(), {});
    const int start = currentRow().isValid() ? currentRow().row() + (isSelected ? 1 : 0) : 0;
    for (int i = 0; i < rows; ++i) {
        const QModelIndex index = _model.index((start + i) % rows, 0);
        if (!index.data(ResultModel::UnreadRole).toBool())
            continue;
        selectRow(index.row());
        _list->scrollTo(index);
        Q_EMIT unreadReached(index);
        return true;
    }
    return false;
}

void ResultsPane::selectUnreadWhenLoaded()
{
    if (_loader.isLoading())
        _wantsUnread = true;
    else
        selectNextUnread();
}

int ResultsPane::order() const
{
    return _order->currentData().toInt();
}

void ResultsPane::setOrder(int order)
{
    if (const int index = _order->findData(order); index >= 0)
        _order->setCurrentIndex(index);
}

/// A column that has two orders changes between them; one that has none leaves the order as it is.
void ResultsPane::sortBy(int column)
{
    int wanted = order();
    for (auto each = ColumnOrders.rbegin(); each != ColumnOrders.rend(); ++each) {
        if (each->column == column && each->order != order())
            wanted = each->order;
    }
    setOrder(wanted);
    showOrder(); // The header turned the arrow by itself.
}

void ResultsPane::showOrder()
{
    QHeaderView& header = *_list->horizontalHeader();
    const auto shown = std::find_if(ColumnOrders.begin(), ColumnOrders.end(),
                                    [this](const ColumnOrder& each) { return each.order == order(); });
    header.setSortIndicatorShown(shown != ColumnOrders.end());
    if (shown != ColumnOrders.end())
        header.setSortIndicator(shown->column, shown->arrow);
}

QByteArray ResultsPane::columns() const
{
    return _list->horizontalHeader()->saveState();
}

void ResultsPane::restoreColumns(const QByteArray& state)
{
    _list->horizontalHeader()->restoreState(state);
    showOrder();
}

/// The view's own way looks for the column at its edge, and from right to left finds none there.
void ResultsPane::selectRow(int row)
{
    _list->selectionModel()->setCurrentIndex(_model.index(row, 0),
                                             QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

void ResultsPane::selectNext(int step)
{
    const int rows = _model.rowCount();
    if (rows == 0)
        return;
    const int row = currentRow().isValid() ? currentRow().row() + step : 0;
    selectRow(std::clamp(row, 0, rows - 1));
}

void ResultsPane::focusSearch()
{
    _search->setFocus(Qt::ShortcutFocusReason);
    _search->selectAll();
}

} // namespace quarry
