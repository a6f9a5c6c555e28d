#pragma once

#include "archive/StringTable.h"
#include "session/ServiceStates.h"

#include <QDialog>

class QTableWidget;

namespace quarry {

/// How each search service did when it was last asked. Stays open beside the window and follows later refreshes.
class HealthDialog final : public QDialog {
    Q_OBJECT

public:
    /// `texts` must outlive the dialog.
    explicit HealthDialog(const StringTable& texts, QWidget* parent = nullptr);

    void show(const QList<ServiceState>& states);

private:
    void setRow(int row, const ServiceState& state);

    const StringTable& _texts;
    QTableWidget* _table = nullptr;
};

} // namespace quarry
