#pragma once

#include "apps/quarry/StatusLine.h"

#include <QByteArray>
#include <QJsonArray>
#include <QJsonObject>
#include <QMap>
#include <QString>
#include <QStringList>

namespace quarry {

/// Follows the updater's progress lines (docs/updater-protocol.md) and tells a person about them: a line a query as
/// each ends, on a terminal also what is being asked right now. Events that are not known are left alone.
class RefreshReport final {
public:
    explicit RefreshReport(StatusLine::Voice voice);

    void take(const QByteArray& line);
    /// No more lines will come.
    void finish();

    /// The updater told how the refresh ended.
    [[nodiscard]] bool hasSummary() const { return !_end.isEmpty(); }
    /// "3 queries updated: 57 added, 2 excluded, 0 blacklisted", and a line about how the services did that were asked.
    [[nodiscard]] QString summary() const;
    /// What went wrong, a line each.
    [[nodiscard]] QStringList faults() const;
    /// The shape that docs/quarry-json.md promises.
    [[nodiscard]] QJsonObject json() const;

private:
    void takeAnswer(const QJsonObject& event);
    void takeEndOfQuery(const QJsonObject& event);

    struct ServiceFault {
        qint64 count = 0;
        QString error;
    };

    StatusLine _status;
    qint64 _expected = 0;
    QJsonArray _queries;
    QJsonObject _end;
    QMap<QString, ServiceFault> _serviceFaults;
    QStringList _messages;
};

} // namespace quarry
