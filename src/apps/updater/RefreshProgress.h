#pragma once

#include "engines/UpdateObserver.h"

#include <QJsonObject>
#include <QString>

#include <functional>
#include <mutex>

namespace quarry {

/// Takes the events of a refresh, in the shape of docs/updater-protocol.md. Called by one thread at a time.
using EventSink = std::function<void(const QJsonObject& event)>;

/// Follows one refresh: turns what happens into events and counts how the queries ended. Thread-safe.
class RefreshProgress final : public UpdateObserver {
public:
    explicit RefreshProgress(EventSink sink) : _sink(std::move(sink)) {}

    void refreshStarted(qsizetype queries);
    /// A fault that does not end the refresh: one line for a person.
    void message(const QString& text);
    void queryPaused(const UpdatedQuery& query);
    void saved();
    void saveFailed(const QString& error);
    /// The last word.
    void refreshFinished(int status, const HealthByService& services);

    void updateStarted(const UpdatedQuery& query) override;
    void serviceAsked(const UpdatedQuery& query, SearchService service) override;
    void serviceAnswered(const UpdatedQuery& query, SearchService service, const ServiceFacts& facts) override;
    void updateFinished(const UpdatedQuery& query, const UpdateFacts& facts) override;

    /// Some queries that were to be updated were not, though nobody stopped them or took them away.
    [[nodiscard]] bool someNotUpdated() const;

private:
    void send(const QString& name, const QJsonObject& members = {});

    EventSink _sink;
    mutable std::mutex _mutex;
    qint64 _updated = 0;
    qint64 _recent = 0;
    qint64 _failed = 0;
    qint64 _stopped = 0;
    qint64 _added = 0;
    qint64 _excluded = 0;
    qint64 _blacklisted = 0;
};

} // namespace quarry
