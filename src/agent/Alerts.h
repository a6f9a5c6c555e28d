#pragma once

#include <QString>
#include <QStringList>

#include <functional>

namespace quarry {

/// Dialogs of the agent. They never block the caller: the answer comes from the event loop. Main thread only.
class Alerts {
public:
    struct Alert {
        QString title;
        QString text;
        QStringList buttons; ///< The first is the default one.
    };

    virtual ~Alerts() = default;
    /// Brings the agent to the front and asks. `answer` gets the index of the button; closing the dialog is the last
    /// one. One alert with the same title is shown at a time; asking again brings it to the front.
    virtual void ask(const Alert& alert, std::function<void(int button)> answer) = 0;
};

} // namespace quarry
