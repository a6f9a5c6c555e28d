// The reading and the saving of the list, which happen on another thread and come back to the window.
#include "blacklist/ui/BlacklistEditorWinController.h"
#include "blacklist/ui/ui_BlacklistEditor.h"
#include "text/LocalisedFormat.h"

#include <QScopedValueRollback>

#include <utility>

namespace quarry {

namespace {

constexpr std::chrono::milliseconds WorthAWord(200);

} // namespace

void BlacklistEditorWinController::connectWork()
{
    _saysWork.setSingleShot(true);
    _saysWork.setInterval(WorthAWord);
    connect(&_saysWork, &QTimer::timeout, this,
            [this] { say(text(_work == Work::Saving ? u"110_List being saved" : u"110_List being read")); });
}

void BlacklistEditorWinController::followFile()
{
    if (_work != Work::None || _blManagerTMP.isCurrent())
        return;
    const auto follow = [](BlacklistDraft& list) {
        list.follow();
        return QString();
    };
    start(Work::Reading, follow, [](const QString&) {});
}

void BlacklistEditorWinController::writeBlacklist(Job job, std::function<void(bool isSaved)> done)
{
    start(Work::Saving, std::move(job), [this, done = std::move(done)](const QString& fault) {
        setCanSave(!fault.isEmpty());
        if (!fault.isEmpty())
            say(filledFormat(text(u"110_List not saved"), {fault}));
        done(fault.isEmpty());
    });
}

void BlacklistEditorWinController::start(Work work, Job job, std::function<void(const QString& fault)> done)
{
    setWork(work);
    _worker.run([this, number = _workNumber, list = _blManagerTMP, job = std::move(job),
                 done = std::move(done)]() mutable -> LoopWorker::Call {
        const QString fault = job(list);
        return [this, number, fault, list = std::move(list), done = std::move(done)]() mutable {
            if (number != _workNumber)
                return;
            finish(std::move(list));
            done(fault);
            for (std::function<void()>& call : std::exchange(_waiting, {}))
                whenIdle(std::move(call));
        };
    });
}

/// Nothing of what is being typed is lost: the table is shown anew around it.
void BlacklistEditorWinController::finish(BlacklistDraft list)
{
    setWork(Work::None);
    const BlacklistFilterPtr selected = tableViewObjectValue(selectedRow());
    std::swap(_blManagerTMP, list);
    _worker.run([old = std::move(list)] { return LoopWorker::Call(); }); // A long one takes its time to go.
    const QScopedValueRollback keep(_keepsTyped, true);
    _rules.reload();
    const qsizetype row = selected ? _blManagerTMP.placeOf(selected->fields()) : -1;
    if (row >= 0)
        selectRow(static_cast<int>(row));
    else
        showAddMode();
    sayReadFault();
}

void BlacklistEditorWinController::whenIdle(std::function<void()> call)
{
    if (_work == Work::None)
        call();
    else
        _waiting.push_back(std::move(call));
}

/// Whatever was going on before is over: what it still brings is not taken.
void BlacklistEditorWinController::setWork(Work work)
{
    _work = work;
    ++_workNumber;
    if (work == Work::None) {
        _saysWork.stop();
        unsetCursor();
    } else {
        _saysWork.start();
        setCursor(Qt::BusyCursor);
    }
    setCanAdd(_canAdd);
    setCanSave(_canSave);
    _ui->removeFromBlacklistButton->setEnabled(work == Work::None);
    _ui->cancelButton->setEnabled(work != Work::Saving);
}

void BlacklistEditorWinController::setCanAdd(bool can)
{
    _canAdd = can;
    _ui->addToBlacklistButton->setEnabled(can && _work == Work::None);
}

void BlacklistEditorWinController::setCanSave(bool can)
{
    _canSave = can;
    _ui->saveBlacklistButton->setEnabled(can && _work == Work::None);
}

} // namespace quarry
