#pragma once

#include "archive/StringTable.h"
#include "database/Schedule.h"
#include "engines/SearchServicesFile.h"
#include "platform/Clock.h"
#include "platform/LoopWorker.h"
#include "window/WelcomePane.h"

#include <QObject>

#include <functional>

namespace quarry {

/// Does what the welcome pane's settings ask for. Settings are written on a thread of its own, which waits there for
/// other programs that write.
class FirstRun final : public QObject {
    Q_OBJECT

public:
    struct Parts {
        HomeFolder home;
        Clock& clock;
        FileStore& files;
        EventTimers& timers;
        const StringTable& texts;
        /// Tells the agent, which reads the schedule at its start only; may be empty.
        std::function<void(bool automatic, qint64 minutes)> followSchedule;
    };

    /// All must outlive the object.
    FirstRun(Parts parts, WelcomePane& pane);
    /// Shows what holds now.
    void show();

Q_SIGNALS:
    /// Something could not be written: one line for a person.
    void failed(const QString& reason);

private:
    void setSchedule(bool automatic, int minutes);
    void setServices(const QString& address);
    /// Writes, then calls back when that went well.
    void write(std::function<QString()> how, std::function<void()> done);

    Parts _parts;
    WelcomePane& _pane;
    LoopWorker _worker;
};

} // namespace quarry
