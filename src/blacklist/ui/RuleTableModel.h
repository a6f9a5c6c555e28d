#pragma once

#include "blacklist/BlacklistFilter.h"

#include <QAbstractTableModel>

namespace quarry {

/// The columns of the table of rules; their identifiers are "col_state", "col_kind" and "col_settings".
enum class RuleColumn {
    State,    ///< A check box.
    Kind,     ///< In words.
    Settings, ///< The rule's text.
};
constexpr int RuleColumns = 3;
[[nodiscard]] QString identifierOf(RuleColumn column);

/// What the table of rules shows.
class RuleTableSource {
public:
    virtual ~RuleTableSource() = default;
    [[nodiscard]] virtual int numberOfRowsInTableView() const = 0;
    /// None for a row without one.
    [[nodiscard]] virtual BlacklistFilterPtr tableViewObjectValue(int row) const = 0;
    /// What the cell has for one of Qt's item roles.
    [[nodiscard]] virtual QVariant tableViewWillDisplayCell(RuleColumn column, int row, int role) const = 0;
    [[nodiscard]] virtual QString tableViewTitle(RuleColumn column) const = 0;
    /// The row's check box was clicked.
    virtual void tableViewCheckBoxClicked(int row) = 0;
};

/// The rules of the source for Qt's table. Holds nothing itself.
class RuleTableModel final : public QAbstractTableModel {
    Q_OBJECT

public:
    /// `source` must outlive the object.
    explicit RuleTableModel(RuleTableSource& source) : _source(source) {}

    /// The source has other rules now; no row is selected after this.
    void reload();
    void redraw(int row);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;

private:
    RuleTableSource& _source;
};

} // namespace quarry
