#pragma once

#include "archive/StringTable.h"
#include "session/ChartLoader.h"

#include <QDateTime>
#include <QDockWidget>

class QLabel;

namespace quarry {

class DayChart;
class ShareChart;

/// What the selected node brought lately: new results per day, and each service's share. Counts nothing while it is
/// hidden. At midnight it moves on to the new day.
class ChartsPane final : public QDockWidget {
    Q_OBJECT

public:
    /// `timers`, `clock` and `texts` must outlive the pane.
    ChartsPane(EventTimers& timers, Clock& clock, const StringTable& texts, QWidget* parent = nullptr);

    /// Of that node, as it is now; `name` is what people know it by.
    void show(const QueryCorePtr& node, const QString& name);

protected:
    void showEvent(QShowEvent* event) override;

private:
    void load();
    [[nodiscard]] QDateTime now() const;
    void waitForMidnight();
    void take(const ResultChart& chart);

    EventTimers& _timers;
    Clock& _clock;
    const StringTable& _texts;
    QDate _today; ///< As of the latest count.
    bool _isWaiting = false;
    ChartLoader _loader;
    QueryCorePtr _node;
    QString _name;
    QString _summary;
    QLabel* _text = nullptr;
    DayChart* _days = nullptr;
    ShareChart* _services = nullptr;
};

} // namespace quarry
