#pragma once

#include "archive/PropertyList.h"
#include "database/Preferences.h"
#include "engines/SearchServices.h"
#include "support/LoopbackServer.h"
#include "support/OwnDatabase.h"
#include "support/QtPrinting.h"
#include "support/ServicePages.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include <condition_variable>
#include <map>
#include <mutex>
#include <set>

namespace quarry::test {

using namespace Qt::Literals::StringLiterals;

/// The five services on loopback, one page a query. Some can be made to keep their clients waiting.
class LoopbackServices final {
public:
    std::map<SearchService, QStringList> results;
    /// What else is on that host, by path; set before any request.
    std::map<QByteArray, QByteArray> pages;

    ~LoopbackServices() { release(); }
    [[nodiscard]] int port() const { return _server.port(); }
    /// Of a page.
    [[nodiscard]] QString address(const QByteArray& path) const { return QString::fromLatin1(_server.address(path)); }
    [[nodiscard]] std::size_t requestCount() const { return _server.requests().size(); }
    /// Requests that hold this text get no answer until release().
    void hold(const QByteArray& part)
    {
        const std::lock_guard lock(_mutex);
        _held = part;
        _waiting = 0;
    }
    /// Returns once such a request has come.
    void waitUntilHeld()
    {
        std::unique_lock lock(_mutex);
        _changed.wait(lock, [this] { return _waiting > 0; });
    }
    void release()
    {
        const std::lock_guard lock(_mutex);
        _held.clear();
        _changed.notify_all();
    }

private:
    void serve(const QByteArray& head, const LoopbackServer::Send& send)
    {
        const QByteArray request = head.left(head.indexOf('\r'));
        waitWhileHeld(request);
        if (const auto page = pages.find(request.split(' ').value(1)); page != pages.end()) {
            send(LoopbackServer::reply(page->second));
            return;
        }
        const SearchService service = serviceOf(request).value();
        std::unique_lock lock(_mutex);
        const QByteArray page = resultPage(service, results[service]);
        lock.unlock();
        send(LoopbackServer::reply(page));
    }
    void waitWhileHeld(const QByteArray& request)
    {
        std::unique_lock lock(_mutex);
        const auto isHeld = [&] { return !_held.isEmpty() && request.contains(_held); };
        _waiting += isHeld();
        _changed.notify_all();
        _changed.wait(lock, [&] { return !isHeld(); });
    }

    std::mutex _mutex;
    std::condition_variable _changed;
    QByteArray _held;
    int _waiting = 0; ///< Requests that were held since hold().
    LoopbackServer _server{[this](const QByteArray& head, const auto& send) { serve(head, send); }};
};

/// The real program on a home folder of its own.
class UpdaterTest : public ::testing::Test, protected OwnDatabase {
protected:
    struct Ended {
        int status = -1;
        QList<QJsonObject> events;
        QString text; ///< Standard error.
    };

    UpdaterTest()
    {
        EXPECT_EQ(home.problem(), QString());
        EXPECT_EQ(Preferences(home, files).setResultsPerEngine(10), QString());
        pointServicesAt({});
    }

    /// All services to the loopback ones; those named to a port where nobody listens.
    void pointServicesAt(const std::set<SearchService>& down)
    {
        PlistValue::Dictionary entries;
        for (const SearchService service : AllSearchServices) {
            entries.insert(searchServiceName(service),
                           PlistValue::Dictionary{{u"scheme"_s, u"http"_s},
                                                  {u"host"_s, u"127.0.0.1"_s},
                                                  {u"port"_s, qint64(down.count(service) != 0 ? 1 : services.port())}});
        }
        EXPECT_TRUE(writeFile(home->searchServicesFile(), writeXmlPropertyList(entries)));
    }

    /// An edit as another program of the product makes it.
    void edit(const std::function<void(const QueryCorePtr& root)>& change)
    {
        OwnDatabase::edit([&](Engine& database) { change(database.rootQuery()); });
    }
    void addQuery(const QString& text)
    {
        edit([&](const QueryCorePtr& root) { root->addChild(QueryCore::initWithQuery(text)); });
    }
    /// What is in the file now.
    [[nodiscard]] QueryCorePtr query(const QString& title)
    {
        const std::unique_ptr<Engine> database = openDatabase();
        EXPECT_EQ(database->lastError(), QString());
        for (const QueryCorePtr& node : database->rootQuery()->childs().value_or(QList<QueryCorePtr>())) {
            if (node->title() == title)
                return node;
        }
        return nullptr;
    }

    void start(QProcess& process, const QStringList& arguments)
    {
        process.start(QStringLiteral(QUARRY_UPDATER_BUNDLE_DIR "/bin/QuarrySpotterUpdater"),
                      QStringList{u"--home"_s, home.path()} + arguments);
        EXPECT_TRUE(process.waitForStarted());
    }
    /// Reads events until one, or one that was read before, has these values; false when the program ends first.
    bool waitForEvent(QProcess& process, const QJsonObject& wanted)
    {
        for (qsizetype next = 0;; ++next) {
            while (next == _seen.size()) {
                if (process.canReadLine())
                    _seen.append(QJsonDocument::fromJson(process.readLine()).object());
                else if (!process.waitForReadyRead(60000))
                    return false;
            }
            bool fits = true;
            for (auto member = wanted.begin(); member != wanted.end(); ++member)
                fits = fits && _seen[next].value(member.key()) == member.value();
            if (fits)
                return true;
        }
    }
    Ended end(QProcess& process)
    {
        EXPECT_TRUE(process.state() == QProcess::NotRunning || process.waitForFinished(60000));
        Ended ended;
        ended.status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
        ended.events = std::exchange(_seen, {});
        for (const QByteArray& line : process.readAllStandardOutput().split('\n')) {
            if (!line.isEmpty())
                ended.events.append(QJsonDocument::fromJson(line).object());
        }
        ended.text = QString::fromUtf8(process.readAllStandardError());
        return ended;
    }
    Ended run(const QStringList& arguments)
    {
        QProcess process;
        start(process, arguments);
        return end(process);
    }
    /// "title outcome added" of each query that ended, sorted.
    static QStringList outcomes(const Ended& ended)
    {
        QStringList lines;
        for (const QJsonObject& event : ended.events) {
            if (event[u"event"] == u"query-finished"_s)
                lines.append(u"%1 %2 %3"_s.arg(event[u"title"].toString(), event[u"outcome"].toString())
                                 .arg(event[u"added"].toInt()));
        }
        lines.sort();
        return lines;
    }

    LoopbackServices services;

private:
    QList<QJsonObject> _seen;
};

} // namespace quarry::test
