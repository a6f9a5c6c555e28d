#pragma once

#include "archive/StringTable.h"
#include "exchange/Imports.h"
#include "platform/LoopWorker.h"
#include "window/UndoableEdits.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>

#include <deque>
#include <functional>

class QProgressDialog;

namespace quarry {

/// Brings exported files into the tree, one after the other, each as one change that can be undone. They are read and
/// made into nodes on a thread of their own, with a sign that can be stopped; the window goes on meanwhile.
class FileImport final : public QObject {
    Q_OBJECT

public:
    struct Parts {
        const LiveTree& tree;
        UndoableEdits& edits;
        FileStore& files;
        EventTimers& timers;
        const StringTable& texts;
    };

    /// References must outlive the object, and so must `window`, which the sign belongs to.
    FileImport(Parts parts, QWidget* window);
    ~FileImport() override;

    /// Puts everything in the files to the end of that folder, behind those that wait; an empty UUID is the top.
    void add(const QStringList& files, const QString& folderUuid);
    /// Nothing begins before the tree is loaded: to be called when it is.
    void goOn();
    /// Nothing more comes in. A file that is being read is let go when it has been.
    void stop();
    /// Calls back, when nothing waits any more or runs; at once when that is so now.
    void whenIdle(std::function<void()> call);

Q_SIGNALS:
    /// How it went, for a person: one line or more for each file since the last pause. `first` is the UUID of the
    /// first node that came in from the latest.
    void told(bool isDone, const QString& text, const QString& first);

private:
    struct File {
        QString path;
        QString folderUuid;
    };
    /// What the other thread makes of a file.
    struct Made {
        QString fault;
        Grafting grafting;
        QList<QueryCorePtr> nodes; ///< In no tree, with the UUIDs that they keep.
    };
    using Stopped = std::atomic<bool>;

    static Made make(const File& file, const Parts& parts, const QueryCorePtr& root, const Stopped& stopped);
    void take(const File& file, const Made& made);
    void tell(bool isDone, const QString& text, const QString& first = {});
    void showSign();
    void endWhenIdle();

    Parts _parts;
    QWidget* _window;
    std::deque<File> _waiting;
    QString _reading;                  ///< The name of the file that is being read.
    std::shared_ptr<Stopped> _stopped; ///< Of the file that is being read; none while none is.
    QStringList _lines;
    bool _isAllDone = true;
    QPointer<QProgressDialog> _sign;
    QList<std::function<void()>> _whenIdle;
    LoopWorker _worker; ///< Last: it ends before what its work uses goes away.
};

} // namespace quarry
