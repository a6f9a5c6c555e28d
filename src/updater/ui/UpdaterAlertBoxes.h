#pragma once

#include "updater/UpdaterParts.h"

#include <QList>
#include <QPointer>

class QMessageBox;

namespace quarry {

/// The updater's messages as windows. They never block; what is open when this object goes closes unanswered. The
/// program must not end with its last window (QApplication::setQuitOnLastWindowClosed).
class UpdaterAlertBoxes final : public UpdaterAlerts {
public:
    UpdaterAlertBoxes() = default;
    ~UpdaterAlertBoxes() override;
    UpdaterAlertBoxes(const UpdaterAlertBoxes&) = delete;
    UpdaterAlertBoxes& operator=(const UpdaterAlertBoxes&) = delete;

    void show(const UpdaterAlert& alert, std::function<void(int button)> answered) override;
    [[nodiscard]] bool isShowing() const override;
    /// Messages come to the front by themselves.
    void bringToFront() override {}

private:
    QList<QPointer<QMessageBox>> _open;
};

} // namespace quarry
