#pragma once

#include "engines/QueryUpdater.h"
#include "support/FakePageLoader.h"
#include "support/RecordingPauser.h"
#include "support/ServicePages.h"
#include "support/SettableClock.h"
#include "support/TemporaryHome.h"

#include <map>
#include <mutex>
#include <set>

namespace quarry::test {

/// Everything updates need, with a scripted network and a clock that stands still. One page a service.
struct UpdateRig final : UpdateObserver {
    TemporaryHome home;
    SettableClock clock;
    RecordingPauser pauser;
    DiskFileStore files;
    NotificationCenter notifications;
    SearchAddresses addresses{SearchServices(), [](const QString&) { return QStringLiteral("xx"); }};
    /// What each service answers; a service that is not named has an empty page.
    std::map<SearchService, QStringList> results;
    /// Services that refuse connections.
    std::set<SearchService> down;
    /// Services whose pages are something else.
    std::set<SearchService> strange;
    /// Called before each answer; set before any update starts.
    std::function<void(const QByteArray& address)> onLoad;
    FakePageLoader loader{[this](const QByteArray& address) { return answer(address); }};
    QueryCorePtr root = QueryCore::initWithQueryFolder(QStringLiteral(""));
    std::function<QueryCorePtr(const QString&)> findQuery = [this](const QString& uuid) {
        return root->findQueryForUUID(uuid);
    };
    qint64 numberOfNewLinks = 0;
    UpdateSteps steps;
    std::vector<BroughtUpdate> journal;

    /// By title, in the order in which they ended.
    std::vector<std::pair<QString, UpdateFacts>> ended;
    std::map<SearchService, ServiceFacts> answered;
    QStringList posted;

    UpdateRig()
    {
        for (const QString& name : {QStringLiteral("uptDidFinish"), QStringLiteral("DBInternalUpdate")})
            _registrations.push_back(notifications.addObserver(name, [this](const QString& n, const auto& sender) {
                const std::lock_guard lock(_mutex);
                const auto* node = static_cast<const QueryCore*>(sender.get());
                posted.append(n + QLatin1Char(' ') + node->title() + QLatin1String(node->isUpdating() ? "!" : ""));
            }));
    }

    QueryUpdateParts parts()
    {
        return {addresses,
                {loader, pauser, clock, files, [](const QString& key) { return key; }, QString(), 10},
                notifications,
                findQuery,
                numberOfNewLinks,
                steps,
                [this](const BroughtUpdate& brought) {
                    const std::lock_guard lock(_mutex);
                    journal.push_back(brought);
                },
                this};
    }

    QueryCorePtr add(const QueryCorePtr& node)
    {
        root->addChild(node);
        return node;
    }
    QueryCorePtr addPlain(const QString& text) { return add(QueryCore::initWithQuery(text)); }

    /// One update of everything below the node, to its end.
    void update(const QueryCorePtr& node)
    {
        ended.clear();
        posted.clear();
        QueryUpdater updater(parts());
        updater.updateAll(node);
    }
    [[nodiscard]] UpdateFacts lastFacts() const { return ended.empty() ? UpdateFacts() : ended.back().second; }

    void updateStarted(const UpdatedQuery&) override {}
    void serviceAsked(const UpdatedQuery&, SearchService) override {}
    void serviceAnswered(const UpdatedQuery&, SearchService service, const ServiceFacts& facts) override
    {
        const std::lock_guard lock(_mutex);
        answered[service] = facts;
    }
    void updateFinished(const UpdatedQuery& query, const UpdateFacts& facts) override
    {
        const std::lock_guard lock(_mutex);
        ended.emplace_back(query.title, facts);
    }

private:
    LoadedPage answer(const QByteArray& address)
    {
        if (onLoad)
            onLoad(address);
        const SearchService service = serviceOf(address).value();
        if (down.count(service) != 0)
            return FakePageLoader::failure(QStringLiteral("connection refused"));
        if (strange.count(service) != 0)
            return FakePageLoader::page("<html><body>Under construction</body></html>");
        const auto found = results.find(service);
        return FakePageLoader::page(resultPage(service, found == results.end() ? QStringList() : found->second));
    }

    std::mutex _mutex;
    std::vector<NotificationCenter::Registration> _registrations;
};

} // namespace quarry::test
