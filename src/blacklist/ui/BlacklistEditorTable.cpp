// What the editor's table shows, and what the selection of a row does to the rest of the window.
#include "blacklist/ui/BlacklistEditorWinController.h"
#include "blacklist/ui/LocalisedForm.h"
#include "blacklist/ui/ui_BlacklistEditor.h"

namespace quarry {

int BlacklistEditorWinController::numberOfRowsInTableView() const
{
    return static_cast<int>(_blManagerTMP.list().filtersCount());
}

BlacklistFilterPtr BlacklistEditorWinController::tableViewObjectValue(int row) const
{
    return _blManagerTMP.list().filterAtIndex(row);
}

QString BlacklistEditorWinController::tableViewTitle(RuleColumn column) const
{
    constexpr const char16_t* keys[] = {u"110_State column", u"110_Kind column", u"110_Settings column"};
    return text(keys[std::size_t(column)]);
}

QVariant BlacklistEditorWinController::tableViewWillDisplayCell(RuleColumn column, int row, int role) const
{
    const BlacklistFilterPtr filter = tableViewObjectValue(row);
    if (!filter)
        return {};
    switch (column) {
    case RuleColumn::State:
        if (role == Qt::CheckStateRole)
            return int(filter->state() ? Qt::Checked : Qt::Unchecked);
        return role == Qt::AccessibleTextRole ? QVariant(tableViewTitle(column)) : QVariant();
    case RuleColumn::Kind:
        return role == Qt::DisplayRole ? QVariant(kindName(filter->type(), _parts.texts)) : QVariant();
    case RuleColumn::Settings:
        break;
    }
    return role == Qt::DisplayRole || role == Qt::ToolTipRole ? QVariant(filter->rule().value_or(QString()))
                                                              : QVariant();
}

void BlacklistEditorWinController::tableViewCheckBoxClicked(int row)
{
    if (row != selectedRow())
        selectRow(row);
    filterActivation();
}

int BlacklistEditorWinController::selectedRow() const
{
    const QModelIndexList rows = _ui->tableViewBL->selectionModel()->selectedRows();
    return rows.isEmpty() ? -1 : rows.constFirst().row();
}

void BlacklistEditorWinController::selectRow(int row)
{
    const QModelIndex cell = _rules.index(row, int(RuleColumn::Settings));
    _ui->tableViewBL->setCurrentIndex(cell);
    _ui->tableViewBL->scrollTo(cell);
}

void BlacklistEditorWinController::reloadTable()
{
    _rules.reload();
    tableViewSelectionDidChange();
}

void BlacklistEditorWinController::tableViewSelectionDidChange()
{
    if (_keepsTyped)
        return;
    const int row = selectedRow();
    if (row < 0) {
        setCanAdd(false);
        selectItemWithTag(BlacklistType::Text);
    }
    if (const BlacklistFilterPtr filter = tableViewObjectValue(row)) {
        showFilter(*filter);
    } else {
        showAddMode();
        emptyRule();
    }
}

void BlacklistEditorWinController::showFilter(const BlacklistFilter& filter)
{
    _editMode = true;
    _ui->addToBlacklistButton->setText(text(u"110_Modify List button"));
    _ui->removeFromBlacklistButton->show();
    const bool isExpression = filter.type() == BlacklistType::RegularExpression;
    _ui->tabView->setCurrentWidget(isExpression ? _ui->regexptab : _ui->simpletab);
    const QString rule = filter.rule().value_or(QString());
    _ui->regexpRuleTF->setText(isExpression ? rule : QString());
    _ui->simpleRuleTF->setText(isExpression ? QString() : rule);
    setCanAdd(false);
    selectItemWithTag(filter.type());
    _ui->caseSensitiveButton->setChecked(filter.isCaseSensitive());
}

void BlacklistEditorWinController::showAddMode()
{
    _editMode = false;
    _ui->removeFromBlacklistButton->hide();
    _ui->addToBlacklistButton->setText(text(u"110_Add List button"));
}

void BlacklistEditorWinController::emptyRule()
{
    _ui->simpleRuleTF->clear();
    _ui->regexpRuleTF->clear();
    _ui->caseSensitiveButton->setChecked(false);
}

/// A kind that is not in the menu leaves it as it is.
void BlacklistEditorWinController::selectItemWithTag(qint64 tag)
{
    const int item = _ui->simpleRuleMenu->findData(tag);
    if (item >= 0)
        _ui->simpleRuleMenu->setCurrentIndex(item);
}

} // namespace quarry
