#include "apps/window/BlacklistOpener.h"

#include "window/MainWindow.h"
#include "window/ResultModel.h"
#include "window/ResultsPane.h"

#include <QEvent>

namespace quarry {

BlacklistOpener::BlacklistOpener(MainWindow& window, const HomeFolder& home, FileStore& files, Workspace& workspace,
                                 EventTimers& timers)
    : _window(window), _home(home), _files(files), _workspace(workspace), _timers(timers),
      _texts(StringTable::ofProgram())
{
    connect(_window.actions().blacklistEditor, &QAction::triggered, this, [this] { editor().showWindow(); });
    connect(_window.actions().blacklistAddress, &QAction::triggered, this, [this] { openForSelected(); });
    _window.installEventFilter(this);
}

BlacklistOpener::~BlacklistOpener() = default;

BlacklistEditorWinController& BlacklistOpener::editor()
{
    if (!_editor)
        _editor = std::make_unique<BlacklistEditorWinController>(
            BlacklistEditorParts{_home, _files, _workspace, _texts, _timers});
    return *_editor;
}

void BlacklistOpener::openForSelected()
{
    const QModelIndexList rows = _window.resultsPane().selectedRows();
    if (!rows.isEmpty())
        editor().loadWithAddress(Url::fromStored(rows.constFirst().data(ResultModel::AddressRole).toString()));
}

bool BlacklistOpener::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Close && _editor && !_editor->mayClose([this] { _window.close(); })) {
        event->ignore();
        return true;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace quarry
