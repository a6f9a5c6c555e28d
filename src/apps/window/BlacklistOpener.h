#pragma once

#include "archive/StringTable.h"
#include "blacklist/ui/BlacklistEditorWinController.h"

#include <QObject>

#include <memory>

namespace quarry {

class MainWindow;

/// Opens the blacklist editor from the main window: empty-handed, or for the selected result's address. The editor is
/// made when it is wanted first. The main window does not close over its unsaved edits without asking, nor before they
/// are saved.
class BlacklistOpener final : public QObject {
public:
    /// All must outlive the object.
    BlacklistOpener(MainWindow& window, const HomeFolder& home, FileStore& files, Workspace& workspace,
                    EventTimers& timers);
    ~BlacklistOpener() override;

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    BlacklistEditorWinController& editor();
    void openForSelected();

    MainWindow& _window;
    HomeFolder _home;
    FileStore& _files;
    Workspace& _workspace;
    EventTimers& _timers;
    StringTable _texts;
    std::unique_ptr<BlacklistEditorWinController> _editor;
};

} // namespace quarry
