#pragma once

#include "archive/StringTable.h"
#include "session/ListingLoader.h"
#include "window/ResultModel.h"

#include <QItemSelection>
#include <QWidget>

#include <vector>

class QComboBox;
class QLabel;
class QLineEdit;
class QTableView;
class QToolButton;

namespace quarry {

/// The results of the selected node in the middle: the interactive search, the order, the list. Keeps selection and
/// scroll position when the same node's results change. It changes nothing but what it shows.
class ResultsPane final : public QWidget {
    Q_OBJECT

public:
    /// `timers` and `texts` must outlive the pane.
    ResultsPane(EventTimers& timers, const StringTable& texts, QWidget* parent = nullptr);

    /// Shows that node's results; `expected` is about how many there are. The same node again refreshes the list.
    void show(const QueryCorePtr& node, qint64 expected);
    [[nodiscard]] const ResultModel& model() const { return _model; }
    [[nodiscard]] QModelIndexList selectedRows() const;
    [[nodiscard]] QModelIndex currentRow() const;
    [[nodiscard]] bool showsHidden() const;
    /// Selects the next unread result below the current one, or from the top, and tells; false when there is none.
    /// Goes back from the hidden results to the others: where nothing counts as unread, nothing is next.
    bool selectNextUnread();
    /// As selectNextUnread, as soon as the list that was asked for is there.
    void selectUnreadWhenLoaded();
    void selectNext(int step);
    void focusSearch();
    [[nodiscard]] QTableView& list() { return *_list; }

    /// As in ResultComparator.h.
    [[nodiscard]] int order() const;
    void setOrder(int order);
    /// The widths of the columns, in a form of their own.
    [[nodiscard]] QByteArray columns() const;
    void restoreColumns(const QByteArray& state);

Q_SIGNALS:
    /// Others are selected, or what is shown of them changed.
    void selectedResultsChanged();
    /// The user stepped to an unread result.
    void unreadReached(const QModelIndex& row);
    void openWanted();
    void ratingWanted(const QModelIndex& row, int rating);
    void contextMenuWanted(const QPoint& globalPosition);

private:
    /// What the user has before him.
    struct Place {
        ResultSelection selected;
        std::vector<int> rows; ///< Of the selected, ascending.
        int current = -1;
        int top = 0;             ///< The first that is to be seen.
        std::vector<int> steady; ///< Rows that are to stay where they are on the screen; the first that is still there.
        int otherwiseTop = 0;
    };
    struct Shown {
        QString node;
        bool hidden = false;
        int order = 0;
        QString search;

        friend bool operator==(const Shown&, const Shown&) = default;
    };

    void load();
    void take(ResultListing listing);
    void makeControls(const StringTable& texts);
    void makeList(const StringTable& texts);
    [[nodiscard]] Place placeNow(bool isSameOrder) const;
    /// `before` is the listing that the place was in.
    void goBackTo(const Place& place, const ResultListing& before);
    /// Where these results are listed now.
    [[nodiscard]] QItemSelection rowsOf(const ResultSelection& results) const;
    void selectRow(int row);
    void sayCount();
    /// As a click on that column's header wants it.
    void sortBy(int column);
    /// By the arrow over the columns.
    void showOrder();

    const StringTable& _texts;
    ResultModel _model;
    ListingLoader _loader;
    QueryCorePtr _node;
    Shown _shown;
    qint64 _expected = 0;
    bool _wantsUnread = false;
    bool _isTaking = false; ///< A new listing: what was selected is being selected in it.
    QLineEdit* _search = nullptr;
    QComboBox* _order = nullptr;
    QToolButton* _hidden = nullptr;
    QTableView* _list = nullptr;
    QLabel* _count = nullptr;
    QLabel* _empty = nullptr; ///< Why there is nothing in the list.
};

} // namespace quarry
