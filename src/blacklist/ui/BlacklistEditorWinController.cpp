#include "blacklist/ui/BlacklistEditorWinController.h"

#include "blacklist/ui/AnswerColor.h"
#include "blacklist/ui/ui_BlacklistEditor.h"
#include "text/CSRegex.h"
#include "text/LocalisedFormat.h"

#include <QApplication>
#include <QMessageBox>
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
      _ui(std::make_unique<Ui::BlacklistEditor>()), _worker(_parts.timers)
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
    center();
    bringToFront();
    if (_work == Work::Saving)
        return whenIdle([this, address] { loadWithAddress(address); });
    followFile();
    sayReadFault();
    reloadTable();
    _ui->tabView->setCurrentWidget(_ui->simpletab);
    _ui->simpleRuleTF->setText(address.host().toString());
    _ui->testAddressTF->setText(address.absoluteString());
    setCanAdd(!_ui->simpleRuleTF->text().isEmpty());
    _ui->simpleRuleTF->setFocus();
}

void BlacklistEditorWinController::addAndLoadWithAddress(const Url& address)
{
    if (_work == Work::Saving)
        return whenIdle([this, address] { addAndLoadWithAddress(address); });
    const BlacklistRule rule{address.absoluteString(), BlacklistType::Text, true, /*caseSensitive=*/false};
    const auto add = [rule](BlacklistDraft& list) {
        list.follow();
        list.list().addToBlacklist(BlacklistFilter::initWithRule(rule.rule, rule.type, rule.state, rule.caseSensitive));
        return list.write();
    };
    writeBlacklist(add, [this, rule](bool) {
        reloadTable();
        selectRow(static_cast<int>(_blManagerTMP.placeOf(rule)));
        _ui->testAddressTF->setText(*rule.rule);
    });
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

void BlacklistEditorWinController::saveBlacklist()
{
    const auto closeWhenSaved = [this](bool isSaved) {
        if (isSaved)
            closeWith(Accepted);
    };
    if (_work == Work::None)
        writeBlacklist([](BlacklistDraft& list) { return list.write(); }, closeWhenSaved);
}

/// The next opening reads what was saved.
void BlacklistEditorWinController::cancelWin()
{
    if (_work == Work::Saving)
        return;
    setWork(Work::None);
    _waiting.clear();
    if (_canSave)
        _blManagerTMP = BlacklistDraft(_parts.home, _parts.files);
    sayReadFault();
    closeWith(Rejected);
}

void BlacklistEditorWinController::closeWith(DialogCode code)
{
    done(code);
    setCanSave(false);
    reloadTable();
    _ui->testAddressTF->clear();
}

bool BlacklistEditorWinController::mayClose(std::function<void()> saved)
{
    const auto endWhenSaved = [this, saved = std::move(saved)] {
        if (!hasUnsavedEdits())
            saved();
    };
    if (_work == Work::Saving) {
        whenIdle(endWhenSaved);
        return false;
    }
    if (!hasUnsavedEdits())
        return true;
    bringToFront();
    QMessageBox box(QMessageBox::Question, windowTitle(), text(u"110_Unsaved question"), QMessageBox::NoButton, this);
    const auto* const save = box.addButton(text(u"110_Save button"), QMessageBox::AcceptRole);
    const auto* const discard = box.addButton(text(u"110_Discard button"), QMessageBox::DestructiveRole);
    box.setEscapeButton(box.addButton(text(u"110_Cancel button"), QMessageBox::RejectRole));
    box.exec();
    if (box.clickedButton() == save) {
        whenIdle([this] { saveBlacklist(); });
        whenIdle(endWhenSaved);
    } else if (box.clickedButton() == discard) {
        cancelWin();
    }
    return box.clickedButton() == discard;
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

// --- The list -------------------------------------------------------------------------------------------------------

void BlacklistEditorWinController::addToBlacklist()
{
    if (_work != Work::None)
        return;
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
    setCanSave(true);
    reloadTable();
    ruleField().setFocus();
}

/// None when there is no text: such an expression would catch every address, and any other rule none.
BlacklistFilterPtr BlacklistEditorWinController::typedRule()
{
    const QString rule = ruleField().text();
    say(rule.isEmpty() ? text(u"110_Rule without text") : QString());
    if (rule.isEmpty())
        return nullptr;
    const qint64 type =
        isSimpleTab() ? _ui->simpleRuleMenu->currentData().toLongLong() : BlacklistType::RegularExpression;
    return BlacklistFilter::initWithRule(rule, type, true, _ui->caseSensitiveButton->isChecked());
}

void BlacklistEditorWinController::removeFromBlacklist()
{
    if (_work != Work::None)
        return;
    const int row = selectedRow();
    if (const BlacklistFilterPtr filter = tableViewObjectValue(row)) {
        _blManagerTMP.list().removeFromBlacklist(filter);
        setCanSave(true);
    }
    reloadTable();
    if (row > 0)
        selectRow(row - 1);
}

void BlacklistEditorWinController::filterActivation()
{
    const int row = selectedRow();
    const BlacklistFilterPtr filter = tableViewObjectValue(row);
    if (!filter || _work != Work::None)
        return;
    _blManagerTMP.list().setState(!filter->state(), filter);
    _rules.redraw(row);
    setCanSave(true);
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
    setCanAdd(!field->text().isEmpty());
}

void BlacklistEditorWinController::tabViewWillSelectTabViewItem()
{
    QLineEdit* const left = isSimpleTab() ? _ui->regexpRuleTF : _ui->simpleRuleTF;
    left->clear();
    setCanAdd(false);
    showAnswer(Answer::None);
}

void BlacklistEditorWinController::caseSensitiveCBChanged()
{
    setCanAdd(true);
}

void BlacklistEditorWinController::simpleMenuChanged()
{
    setCanAdd(true);
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

void BlacklistEditorWinController::say(const QString& words)
{
    _ui->noticeTF->setText(words);
}

void BlacklistEditorWinController::sayReadFault()
{
    const QString& fault = _blManagerTMP.fault();
    say(fault.isEmpty() ? QString() : filledFormat(text(u"110_List not read"), {fault}));
}

QString BlacklistEditorWinController::text(const char16_t* key) const
{
    return _parts.texts.text(QString::fromUtf16(key));
}

} // namespace quarry
