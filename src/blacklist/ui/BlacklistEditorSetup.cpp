// How the editor's parts are put together; what they do is in BlacklistEditorWinController.cpp.
#include "blacklist/ui/BlacklistEditorWinController.h"
#include "blacklist/ui/LocalisedForm.h"
#include "blacklist/ui/ui_BlacklistEditor.h"

#include <QApplication>
#include <QShortcut>
#include <QStyledItemDelegate>

namespace quarry {

namespace {

/// The kinds of simple rules, in the order of the menu.
constexpr qint64 MenuTags[] = {BlacklistType::Text, BlacklistType::Domain, BlacklistType::FileType};

/// Pixels above and below the text of a row, together.
constexpr int RowSpace = 8;

/// A rule's text runs from left to right in every language, and stands where the window's texts stand.
class RuleDelegate final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        option->displayAlignment = QStyle::visualAlignment(option->direction, option->displayAlignment);
        option->direction = Qt::LeftToRight;
    }
};

} // namespace

void BlacklistEditorWinController::awakeFromNib()
{
    _ui->setupUi(this);
    localiseForm(*this, _parts.texts);
    for (int i = 0; i < _ui->simpleRuleMenu->count(); ++i)
        _ui->simpleRuleMenu->setItemData(i, MenuTags[i]);
    // Addresses and expressions are read that way in every language.
    for (QLineEdit* const field : {_ui->simpleRuleTF, _ui->regexpRuleTF, _ui->testAddressTF})
        field->setLayoutDirection(Qt::LeftToRight);
    setUpTable();
    connectParts();
    connectWork();
    connectKeys();
    tableViewSelectionDidChange();
    center();
}

void BlacklistEditorWinController::setUpTable()
{
    QTableView& table = *_ui->tableViewBL;
    table.setModel(&_rules);
    QHeaderView& header = *table.horizontalHeader();
    header.setSectionResizeMode(int(RuleColumn::State), QHeaderView::ResizeToContents);
    header.setSectionResizeMode(int(RuleColumn::Kind), QHeaderView::ResizeToContents);
    header.setSectionResizeMode(int(RuleColumn::Settings), QHeaderView::Stretch);
    table.verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table.verticalHeader()->setDefaultSectionSize(table.fontMetrics().height() + RowSpace);
    table.setItemDelegateForColumn(int(RuleColumn::Settings), new RuleDelegate(&table));
    connect(table.selectionModel(), &QItemSelectionModel::selectionChanged, this,
            [this] { tableViewSelectionDidChange(); });
}

void BlacklistEditorWinController::connectParts()
{
    const auto onClick = [this](QAbstractButton* button, void (BlacklistEditorWinController::*what)()) {
        connect(button, &QAbstractButton::clicked, this, [this, what] { (this->*what)(); });
    };
    onClick(_ui->addToBlacklistButton, &BlacklistEditorWinController::addToBlacklist);
    onClick(_ui->removeFromBlacklistButton, &BlacklistEditorWinController::removeFromBlacklist);
    onClick(_ui->saveBlacklistButton, &BlacklistEditorWinController::saveBlacklist);
    onClick(_ui->cancelButton, &BlacklistEditorWinController::cancelWin);
    onClick(_ui->regexpHelpButton, &BlacklistEditorWinController::showRegexpHelp);
    onClick(_ui->testAddrButton, &BlacklistEditorWinController::testNewExclusion);
    onClick(_ui->caseSensitiveButton, &BlacklistEditorWinController::caseSensitiveCBChanged);
    connect(_ui->simpleRuleMenu, &QComboBox::activated, this, [this] { simpleMenuChanged(); });
    connect(_ui->tabView, &QTabWidget::currentChanged, this, [this] { tabViewWillSelectTabViewItem(); });
    for (QLineEdit* const field : {_ui->simpleRuleTF, _ui->regexpRuleTF})
        connect(field, &QLineEdit::textEdited, this, [this, field] { controlTextDidChange(field); });
    // An answer about something else than what is shown would mislead.
    for (QLineEdit* const field : {_ui->simpleRuleTF, _ui->regexpRuleTF, _ui->testAddressTF})
        connect(field, &QLineEdit::textChanged, this, [this] { showAnswer(Answer::None); });
    connect(_ui->simpleRuleMenu, &QComboBox::currentIndexChanged, this, [this] { showAnswer(Answer::None); });
    connect(_ui->caseSensitiveButton, &QCheckBox::toggled, this, [this] { showAnswer(Answer::None); });
}

void BlacklistEditorWinController::connectKeys()
{
    const auto onKey = [this](const QKeySequence& key, void (BlacklistEditorWinController::*what)()) {
        auto* const shortcut = new QShortcut(key, _ui->tableViewBL);
        shortcut->setContext(Qt::WidgetShortcut);
        connect(shortcut, &QShortcut::activated, this, [this, what] { (this->*what)(); });
    };
    onKey(Qt::Key_Space, &BlacklistEditorWinController::filterActivation);
    onKey(QKeySequence::Delete, &BlacklistEditorWinController::removeFromBlacklist);
    onKey(Qt::Key_Backspace, &BlacklistEditorWinController::removeFromBlacklist);
    connect(qApp, &QApplication::focusChanged, this,
            [this](const QWidget*, const QWidget* now) { chooseDefaultButton(now); });
}

/// Enter does what the place one is at is there for.
void BlacklistEditorWinController::chooseDefaultButton(const QWidget* focused)
{
    if (!focused || focused->window() != this || qobject_cast<const QAbstractButton*>(focused))
        return;
    if (focused == _ui->testAddressTF)
        _ui->testAddrButton->setDefault(true);
    else if (focused == _ui->tableViewBL)
        _ui->saveBlacklistButton->setDefault(true);
    else
        _ui->addToBlacklistButton->setDefault(true);
}

} // namespace quarry
