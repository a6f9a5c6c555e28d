#include "blacklist/ui/RuleTableModel.h"

namespace quarry {

QString identifierOf(RuleColumn column)
{
    switch (column) {
    case RuleColumn::State:
        return QStringLiteral("col_state");
    case RuleColumn::Kind:
        return QStringLiteral("col_kind");
    case RuleColumn::Settings:
        break;
    }
    return QStringLiteral("col_settings");
}

void RuleTableModel::reload()
{
    beginResetModel();
    endResetModel();
}

void RuleTableModel::redraw(int row)
{
    Q_EMIT dataChanged(index(row, 0), index(row, RuleColumns - 1));
}

int RuleTableModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : _source.numberOfRowsInTableView();
}

int RuleTableModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : RuleColumns;
}

QVariant RuleTableModel::data(const QModelIndex& index, int role) const
{
    return index.isValid() ? _source.tableViewWillDisplayCell(RuleColumn(index.column()), index.row(), role)
                           : QVariant();
}

QVariant RuleTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= RuleColumns)
        return {};
    if (role == Qt::DisplayRole)
        return _source.tableViewTitle(RuleColumn(section));
    return role == Qt::UserRole ? QVariant(identifierOf(RuleColumn(section))) : QVariant();
}

Qt::ItemFlags RuleTableModel::flags(const QModelIndex& index) const
{
    const Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    return index.column() == int(RuleColumn::State) ? flags | Qt::ItemIsUserCheckable : flags;
}

bool RuleTableModel::setData(const QModelIndex& index, const QVariant&, int role)
{
    if (!index.isValid() || role != Qt::CheckStateRole)
        return false;
    _source.tableViewCheckBoxClicked(index.row());
    return true;
}

} // namespace quarry
