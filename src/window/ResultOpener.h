#pragma once

#include "archive/StringTable.h"
#include "platform/Workspace.h"

#include <QModelIndexList>
#include <QString>

class QWidget;

namespace quarry {

/// Opens results in the browser. Their addresses come from web pages, so nothing but web addresses is handed to the
/// desktop: no files, and no programs that other addresses start. Main thread only.
class ResultOpener final {
public:
    /// Both must outlive the object.
    ResultOpener(Workspace& workspace, const StringTable& texts) : _workspace(workspace), _texts(texts) {}

    /// Asks the user before a great many are opened.
    [[nodiscard]] bool isWanted(qsizetype count, QWidget* window) const;
    /// Rows of a ResultModel. Answers those that the desktop took.
    QModelIndexList open(const QModelIndexList& rows);
    /// Why the others were not opened, for a person; empty when all were.
    [[nodiscard]] QString fault() const { return _fault; }

private:
    Workspace& _workspace;
    const StringTable& _texts;
    QString _fault;
};

} // namespace quarry
