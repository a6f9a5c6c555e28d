#include "blacklist/ui/BlacklistEditorWinController.h"

#include "blacklist/ui/AnswerColor.h"
#include "blacklist/ui/ui_BlacklistEditor.h"
#include "text/CSRegex.h"
#include "text/LocalisedFormat.h"

#include <QApplication>
#include <QMessageBox>
#include <QScopedValueRollback>
#include <QScreen>

namespace quarry {

namespace {

/// The tests of simple rules have nothing to say.
class NoLog final : public Logger {
public:
    void logString(const QString&) override {}
};

} // namespace

BlacklistEditorWinController::BlacklistEditorWinController(BlacklistEditorParts parts, QWidget* parent)
    : QDialog(parent), _parts(std::move(parts)), _blManagerTMP(_parts.home, _parts.files), _rules(*this),
      _ui(std::make_unique<Ui::BlacklistEditor>())
{
    awakeFromNib();
}

BlacklistEditorWinController::~BlacklistEditorWinController()
{
    qApp->disconnect(this); // The focus leaves the window once more when its parts go.
}

// --- Opening and closing --------------------------------------------------------------------------------------------

void BlacklistEditorWinController::showWindow()
{
    if (!isVisible()) {
        center();
        ruleField().setFocus();
    }
    bringToFront();
}

void BlacklistEditorWinController::loadWithAddress(const Url& address)
{
    if (hasUnsavedEdits())
        _blManagerTMP.follow();
    else
        _blManagerTMP.reload();
    sayReadFault();
    reloadTable();
    _ui->tabView->setCurrentWidget(_ui->simpletab);
    _ui->simpleRuleTF->setText(address.host().toString());
    _ui->testAddressTF->setText(address.absoluteString());
    _ui->addToBlacklistButton->setEnabled(!_ui->simpleRuleTF->text().isEmpty());
    _ui->simpleRuleTF->setFocus();
    center();
    bringToFront();
}

void BlacklistEditorWinController::addAndLoadWithAddress(const Url& address)
{
    followFile();
    const auto filter =
        BlacklistFilter::initWithRule(address.absoluteString(), BlacklistType::Text, true, /*caseSensitive=*/false);
    _blManagerTMP.list().addToBlacklist(filter);
    _ui->saveBlacklistButton->setEnabled(!writeBlacklist());
    reloadTable();
    selectRow(static_cast<int>(_blManagerTMP.placeOf(filter->fields())));
    _ui->testAddressTF->setText(address.absoluteString());
    center();
    bringToFront();
}

void BlacklistEditorWinController::center()
{
    const QScreen* const on = parentWidget() ? parentWidget()->screen() : screen();
    QRect frame(QPoint(), size().boundedTo(on->availableSize()));
    resize(frame.size());
    frame.moveCenter(on->availableGeometry().center());
    move(frame.topLeft());
}

void BlacklistEditorWinController::bringToFront()
{
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

bool BlacklistEditorWinController::writeBlacklist()
{
    const QString error = _blManagerTMP.write();
    sayWhatIsWrong(error.isEmpty() ? QString() : filledFormat(text(u"110_List not saved"), {error}));
    return error.isEmpty();
}

void BlacklistEditorWinController::saveBlacklist()
{
    if (writeBlacklist())
        closeWith(Accepted);
}

void BlacklistEditorWinController::cancelWin()
{
    _blManagerTMP.reload();
    sayReadFault();
    closeWith(Rejected);
}

void BlacklistEditorWinController::closeWith(DialogCode code)
{
    done(code);
    _ui->saveBlacklistButton->setEnabled(false);
    reloadTable();
    _ui->testAddressTF->clear();
}

bool BlacklistEditorWinController::mayClose()
{
    if (!hasUnsavedEdits())
        return true;
    bringToFront();
    QMessageBox box(QMessageBox::Question, windowTitle(), text(u"110_Unsaved question"), QMessageBox::NoButton, this);
    const auto* const save = box.addButton(text(u"110_Save button"), QMessageBox::AcceptRole);
    const auto* const discard = box.addButton(text(u"110_Discard button"), QMessageBox::DestructiveRole);
    box.setEscapeButton(box.addButton(text(u"110_Cancel button"), QMessageBox::RejectRole));
    box.exec();
    if (box.clickedButton() == save)
        saveBlacklist();
    else if (box.clickedButton() == discard)
        cancelWin();
    return !hasUnsavedEdits();
}

void BlacklistEditorWinController::changeEvent(QEvent* event)
{
    QDialog::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        windowDidBecomeKey();
    else if (event->type() == QEvent::PaletteChange)
        colorAnswer();
}

void BlacklistEditorWinController::showEvent(QShowEvent* event)
{
    windowDidBecomeKey(); // Not every desktop gives a window the focus when it is shown.
    QDialog::showEvent(event);
}

void BlacklistEditorWinController::windowDidBecomeKey()
{
    followFile();
}

void BlacklistEditorWinController::followFile()
{
    const BlacklistFilterPtr selected = tableViewObjectValue(selectedRow());
    if (!_blManagerTMP.follow())
        return;
    // Nothing of what is being typed is lost: the table is shown anew around it.
    const QScopedValueRollback keep(_keepsTyped, true);
    _rules.reload();
    const qsizetype row = selected ? _blManagerTMP.placeOf(selected->fields()) : -1;
    if (row >= 0)
        selectRow(static_cast<int>(row));
    else
        showAddMode();
    sayReadFault();
}

// --- The list -------------------------------------------------------------------------------------------------------

void BlacklistEditorWinController::addToBlacklist()
{
    const BlacklistFilterPtr edited = _editMode ? tableViewObjectValue(selectedRow()) : nullptr;
    if (const BlacklistFilterPtr typed = typedRule()) {
        // The same object says something else, so that what a newer program stored with the rule stays with it.
        const BlacklistFilterPtr filter = edited ? edited : typed;
        _blManagerTMP.list().removeFromBlacklist(filter);
        filter->setRule(typed->rule());
        filter->setType(typed->type());
        filter->setState(typed->state());
        filter->setCaseSensitive(typed->isCaseSensitive());
        _blManagerTMP.list().addToBlacklist(filter);
        _editMode = false;
    }
    _ui->saveBlacklistButton->setEnabled(true);
    reloadTable();
    ruleField().setFocus();
}

/// None when there is no text: such an expression would catch every address, and any other rule none.
BlacklistFilterPtr BlacklistEditorWinController::typedRule()
{
    const QString rule = ruleField().text();
    sayWhatIsWrong(rule.isEmpty() ? text(u"110_Rule without text") : QString());
    if (rule.isEmpty())
        return nullptr;
    const qint64 type =
        isSimpleTab() ? _ui->simpleRuleMenu->currentData().toLongLong() : BlacklistType::RegularExpression;
    return BlacklistFilter::initWithRule(rule, type, true, _ui->caseSensitiveButton->isChecked());
}

void BlacklistEditorWinController::removeFromBlacklist()
{
    const int row = selectedRow();
    if (const BlacklistFilterPtr filter = tableViewObjectValue(row)) {
        _blManagerTMP.list().removeFromBlacklist(filter);
        _ui->saveBlacklistButton->setEnabled(true);
    }
    reloadTable();
    if (row > 0)
        selectRow(row - 1);
}

void BlacklistEditorWinController::filterActivation()
{
    const int row = selectedRow();
    const BlacklistFilterPtr filter = tableViewObjectValue(row);
    if (!filter)
        return;
    _blManagerTMP.list().setState(!filter->state(), filter);
    _rules.redraw(row);
    _ui->saveBlacklistButton->setEnabled(true);
}

// --- The rule being typed -------------------------------------------------------------------------------------------

bool BlacklistEditorWinController::isSimpleTab() const
{
    return _ui->tabView->currentWidget() == _ui->simpletab;
}

QLineEdit& BlacklistEditorWinController::ruleField() const
{
    return isSimpleTab() ? *_ui->simpleRuleTF : *_ui->regexpRuleTF;
}

void BlacklistEditorWinController::controlTextDidChange(QLineEdit* field)
{
    QLineEdit* const other = field == _ui->simpleRuleTF ? _ui->regexpRuleTF : _ui->simpleRuleTF;
    other->clear();
    _ui->addToBlacklistButton->setEnabled(!field->text().isEmpty());
}

void BlacklistEditorWinController::tabViewWillSelectTabViewItem()
{
    QLineEdit* const left = isSimpleTab() ? _ui->regexpRuleTF : _ui->simpleRuleTF;
    left->clear();
    _ui->addToBlacklistButton->setEnabled(false);
    showAnswer(Answer::None);
}

void BlacklistEditorWinController::caseSensitiveCBChanged()
{
    _ui->addToBlacklistButton->setEnabled(true);
}

void BlacklistEditorWinController::simpleMenuChanged()
{
    _ui->addToBlacklistButton->setEnabled(true);
}

// --- The test -------------------------------------------------------------------------------------------------------

bool BlacklistEditorWinController::testExclusion(const QString& rule, const QString& address,
                                                 Qt::CaseSensitivity option, qint64 kind)
{
    NoLog log;
    return kind != BlacklistType::RegularExpression &&
           testRule({rule, kind, true, option == Qt::CaseSensitive}, address, option, log);
}

void BlacklistEditorWinController::testNewExclusion()
{
    const QString address = _ui->testAddressTF->text();
    const bool isCaseSensitive = _ui->caseSensitiveButton->isChecked();
    bool isExcluded = false;
    if (isSimpleTab()) {
        isExcluded =
            testExclusion(_ui->simpleRuleTF->text(), address, isCaseSensitive ? Qt::CaseSensitive : Qt::CaseInsensitive,
                          _ui->simpleRuleMenu->currentData().toLongLong());
    } else {
        try {
            CSRegex regex = isCaseSensitive ? CSRegex::regexWithPattern(_ui->regexpRuleTF->text())
                                            : CSRegex::regexWithPattern(_ui->regexpRuleTF->text(), CSRegex::IgnoreCase);
            isExcluded = regex.matchesString(address);
        } catch (const CSRegexException& fault) {
            // Some faults have no words of their own.
            showAnswer(Answer::Fault, fault.reason().isEmpty() ? text(u"110_Invalid expression") : fault.reason());
            return;
        }
    }
    if (isExcluded)
        showAnswer(Answer::Excluded, text(u"101_Blacklist Address will be excluded"));
    else
        showAnswer(Answer::NotExcluded, text(u"101_Blacklist Address will not be excluded"));
}

void BlacklistEditorWinController::showAnswer(Answer answer, const QString& words)
{
    _answer = answer;
    colorAnswer();
    _ui->testAddressResultTF->setText(words);
}

void BlacklistEditorWinController::colorAnswer()
{
    const auto tone = _answer == Answer::Excluded ? AnswerTone::Green : AnswerTone::Orange;
    const QColor background = palette().color(QPalette::Window);
    QPalette colors;
    colors.setColor(QPalette::WindowText, answerColor(tone, background));
    _ui->testAddressResultTF->setPalette(colors);
}

void BlacklistEditorWinController::showRegexpHelp()
{
    const auto address = Url::fromText(text(u"110_Regular Expression wikipedia URL"));
    if (address && !address->scheme().isEmpty() && !address->host().isEmpty())
        _parts.workspace.openAddress(address->absoluteString());
}

// --- Texts ----------------------------------------------------------------------------------------------------------

void BlacklistEditorWinController::sayWhatIsWrong(const QString& words)
{
    _ui->noticeTF->setText(words);
    _ui->noticeTF->setVisible(!words.isEmpty());
}

void BlacklistEditorWinController::sayReadFault()
{
    const QString& fault = _blManagerTMP.fault();
    sayWhatIsWrong(fault.isEmpty() ? QString() : filledFormat(text(u"110_List not read"), {fault}));
}

QString BlacklistEditorWinController::text(const char16_t* key) const
{
    return _parts.texts.text(QString::fromUtf16(key));
}

} // namespace quarry
