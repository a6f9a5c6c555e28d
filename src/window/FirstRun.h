#pragma once

#include "archive/StringTable.h"
#include "database/Schedule.h"
#include "engines/SearchServicesFile.h"
#include "platform/Clock.h"
#include "window/WelcomePane.h"

#include <QObject>

#include <functional>

namespace quarry {

/// Does what the welcome pane's settings ask for.
class FirstRun final : public QObject {
    Q_OBJECT

public:
    struct Parts {
        HomeFolder home;
        Clock& clock;
        FileStore& files;
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

    Parts _parts;
    WelcomePane& _pane;
};

} // namespace quarry
