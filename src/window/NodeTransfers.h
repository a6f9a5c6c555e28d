#pragma once

#include "archive/StringTable.h"
#include "exchange/ExportFile.h"
#include "session/LiveTree.h"
#include "session/OfflineCopyRun.h"
#include "window/TreePane.h"
#include "window/WindowActions.h"

#include <QList>
#include <QObject>
#include <QPointer>

#include <memory>

class QProgressDialog;

namespace quarry {

/// Writes what is selected to files: exports, and offline copies of the pages behind results. Both on threads of their
/// own, with a sign of how far they are and a stop; the window goes on meanwhile.
class NodeTransfers final : public QObject {
    Q_OBJECT

public:
    struct Parts {
        LiveTree::Parts session;
        const LiveTree& tree;
        TreePane& pane;
        WindowActions& actions;
        const StringTable& texts;
    };

    /// References must outlive the object. The dialogs belong to `window`.
    NodeTransfers(Parts parts, QWidget* window);
    ~NodeTransfers() override;

    [[nodiscard]] bool isExporting() const { return !_exports.isEmpty(); }
    /// Breaks off what runs; nothing is written.
    void dropExports();
    [[nodiscard]] bool isCopying() const { return _copy.state().isRunning; }
    /// Stops a copy, and calls back when the window may go.
    void stopToQuit(std::function<void()> reply) { _copy.stopToQuit(std::move(reply)); }

    // No nodes stand for everything. What is not there any more is passed over.
    void exportTo(const QStringList& nodes, const QString& file, ExportFormat format, ExportedResults results);
    void copyTo(const QStringList& nodes, const QString& folder);

Q_SIGNALS:
    /// How it ended, for a person.
    void ended(bool isDone, const QString& text);

private:
    void askForExport();
    void askForCopy();
    [[nodiscard]] QList<QueryCorePtr> nodesOf(const QStringList& uuids) const;
    [[nodiscard]] QProgressDialog* showProgress(const QString& text);
    void showCopy();
    [[nodiscard]] QString summaryOf(const OfflineCopyState& state) const;

    Parts _parts;
    QWidget* _window;
    QPointer<QProgressDialog> _copyProgress;
    OfflineCopyRun _copy;
    QList<std::shared_ptr<std::atomic<bool>>> _exports; ///< Those that are not over, and what breaks them off.
    Worker _exporter;                                   ///< Last: it ends before what its jobs call goes away.
};

} // namespace quarry
