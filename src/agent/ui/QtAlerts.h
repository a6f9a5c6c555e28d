#pragma once

#include "agent/Alerts.h"

#include <QMap>
#include <QPointer>

class QMessageBox;

namespace quarry {

/// Alerts as windows. They close with this object, unanswered. The program must not end with its last window
/// (QApplication::setQuitOnLastWindowClosed).
class QtAlerts final : public Alerts {
public:
    QtAlerts() = default;
    ~QtAlerts() override;
    QtAlerts(const QtAlerts&) = delete;
    QtAlerts& operator=(const QtAlerts&) = delete;

    /// When an alert with the same title is open, that one stays, with the answer it was asked for.
    void ask(const Alert& alert, std::function<void(int button)> answer) override;

private:
    QMap<QString, QPointer<QMessageBox>> _open;
};

} // namespace quarry
