// A refresh as a person starts it: quarry, the updater and the gateway, each a process of its own.

#include "support/LoopbackServer.h"
#include "support/QuarryProcess.h"
#include "support/TemporaryHome.h"

#include <QDir>
#include <QJsonArray>

#include <gtest/gtest.h>

#include <csignal>
#include <future>

using namespace Qt::Literals::StringLiterals;

namespace quarry::test {
namespace {

class QuarryRefresh : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(QDir(_home.path()).mkdir(u"documents"_s));
        ASSERT_EQ(run({u"prefs"_s, u"--results-per-service"_s, u"10"_s}).status, 0);
    }
    void TearDown() override
    {
        _gateway.terminate();
        _gateway.waitForFinished();
    }
    [[nodiscard]] Ran run(const QStringList& arguments) const { return runQuarry(_home.path(), arguments); }
    void writeDocument(const QString& name, const QByteArray& text) const
    {
        ASSERT_TRUE(writeFile(_home.path() + u"/documents/"_s + name, text));
    }
    void startGateway()
    {
        _gateway.start(QStringLiteral(QUARRY_BUNDLE_DIR "/bin/quarry-gateway"),
                       {u"--folder"_s, _home.path() + u"/documents"_s});
        ASSERT_TRUE(_gateway.waitForReadyRead(60000));
        const QString ready = QString::fromUtf8(_gateway.readLine());
        const QString address = ready.section(u' ', 2, 2).chopped(1);
        ASSERT_EQ(run({u"services"_s, u"--at"_s, address}).status, 0) << ready.toStdString();
    }
    [[nodiscard]] QStringList newTitles() const
    {
        QStringList titles;
        for (const QJsonValue result : run({u"results"_s, u"--new"_s, u"--json"_s}).json()[u"results"].toArray())
            titles.append(result.toObject()[u"title"].toString());
        titles.sort();
        return titles;
    }

    TemporaryHome _home;
    QProcess _gateway;
};

TEST_F(QuarryRefresh, FindsWhatIsThereAndThenOnlyWhatIsNew)
{
    writeDocument(u"one.md"_s, "# Rye starter\n\nFeeding a rye starter.\n");
    writeDocument(u"two.md"_s, "# Wheat starter\n\nA starter of wheat.\n");
    startGateway();
    ASSERT_EQ(run({u"add"_s, u"starter"_s}).status, 0);
    ASSERT_EQ(run({u"add"_s, u"paused"_s}).status, 0);
    ASSERT_EQ(run({u"disable"_s, u"paused"_s}).status, 0);

    const Ran first = run({u"refresh"_s});
    EXPECT_EQ(first.status, 0) << first.err.toStdString();
    EXPECT_EQ(first.out, u"[1/1] starter: 2 new\n1 query updated: 2 added, 0 excluded, 0 blacklisted\n"
                         "Google, Yahoo, Bing, Ixquick: results\n"_s);
    EXPECT_EQ(newTitles(), (QStringList{u"Rye starter"_s, u"Wheat starter"_s}));
    EXPECT_FALSE(run({u"schedule"_s, u"--json"_s}).json()[u"lastUpdate"].isNull());

    // Too soon: nothing is asked, and nothing is lost.
    const QJsonObject soon = run({u"refresh"_s, u"starter"_s, u"--json"_s}).json();
    EXPECT_EQ(soon[u"recent"].toInt(), 1);
    EXPECT_EQ(soon[u"queries"].toArray()[0].toObject()[u"outcome"].toString(), u"recent"_s);

    writeDocument(u"three.md"_s, "# Spelt starter\n\nNew today.\n");
    const Ran later = run({u"refresh"_s, u"--quiet"_s, u"--clock-offset"_s, u"25200"_s});
    EXPECT_EQ(later.status, 0);
    EXPECT_EQ(later.out + later.err, QString());
    EXPECT_EQ(newTitles(), QStringList{u"Spelt starter"_s});
}

TEST_F(QuarryRefresh, AnEditedQueryIsAskedAgainAtOnce)
{
    writeDocument(u"one.md"_s, "# Rye starter\n\nFeeding a rye starter.\n");
    writeDocument(u"two.md"_s, "# Green tea\n\nBrewing.\n");
    startGateway();
    ASSERT_EQ(run({u"add"_s, u"starter"_s, u"--title"_s, u"Mine"_s}).status, 0);
    ASSERT_EQ(run({u"refresh"_s}).status, 0);
    ASSERT_EQ(run({u"edit"_s, u"Mine"_s, u"--text"_s, u"tea"_s}).status, 0);
    ASSERT_EQ(run({u"refresh"_s}).status, 0);
    EXPECT_EQ(newTitles(), QStringList{u"Green tea"_s});
}

TEST_F(QuarryRefresh, ServicesThatAreNotThereAreNamed)
{
    ASSERT_EQ(run({u"services"_s, u"--at"_s, u"http://127.0.0.1:1"_s}).status, 0);
    ASSERT_EQ(run({u"add"_s, u"starter"_s}).status, 0);
    const Ran ran = run({u"refresh"_s, u"--quiet"_s});
    EXPECT_EQ(ran.status, 1);
    for (const QString& said : {u"Bing, Google, Ixquick, Yahoo could not be read (1 time): connection refused"_s,
                                u"some queries were not updated"_s})
        EXPECT_TRUE(ran.err.contains(said)) << ran.err.toStdString();
    EXPECT_EQ(run({u"refresh"_s, u"nothing of that name"_s}).status, 1);
}

TEST_F(QuarryRefresh, AnInterruptIsPassedOnToTheUpdaterAndWaitedFor)
{
    std::promise<void> asked;
    std::once_flag once;
    LoopbackServer* server = nullptr;
    LoopbackServer hanging([&](const QByteArray&, const LoopbackServer::Send&) {
        std::call_once(once, [&] { asked.set_value(); });
        server->waitForClient();
    });
    server = &hanging;
    ASSERT_EQ(run({u"services"_s, u"--at"_s, QString::fromLatin1(hanging.address())}).status, 0);
    ASSERT_EQ(run({u"add"_s, u"starter"_s}).status, 0);

    QuarryProcess refresh(_home.path(), {u"refresh"_s});
    ASSERT_EQ(asked.get_future().wait_for(std::chrono::seconds(60)), std::future_status::ready);
    // An edit meanwhile goes through and survives.
    EXPECT_EQ(run({u"rename"_s, u"starter"_s, u"Renamed"_s}).status, 0);
    ASSERT_EQ(::kill(static_cast<pid_t>(refresh.process().processId()), SIGINT), 0);
    const Ran ran = refresh.wait();
    EXPECT_EQ(ran.status, 1);
    EXPECT_TRUE(ran.err.contains(u"stopped; what was found by then is kept"_s)) << ran.err.toStdString();
    EXPECT_EQ(run({u"show"_s, u"Renamed"_s}).status, 0);
}

} // namespace
} // namespace quarry::test
