// A refresh as a person starts it: quarry, the updater and the gateway, each a process of its own.

#include "QuarryRig.h"
#include "UpdaterRig.h"

#include <QDir>
#include <QJsonArray>

#include <csignal>

using namespace Qt::Literals::StringLiterals;

namespace quarry::test {
namespace {

class QuarryRefresh : public QuarryTest {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(QDir(home.path()).mkdir(u"documents"_s));
        ASSERT_EQ(run("prefs --results-per-service 10").status, 0);
    }
    void TearDown() override
    {
        _gateway.terminate();
        _gateway.waitForFinished();
    }
    void writeDocument(const QString& name, const QByteArray& text) const
    {
        ASSERT_TRUE(writeFile(home.path() + u"/documents/"_s + name, text));
    }
    void serveDocuments()
    {
        const QString address = startGateway(_gateway, home.path() + u"/documents"_s);
        ASSERT_EQ(run({u"services"_s, u"--at"_s, address}).status, 0) << address.toStdString();
    }
    [[nodiscard]] QStringList newTitles() const
    {
        QStringList titles;
        for (const QJsonValue result : run("results --new --json").json()[u"results"].toArray())
            titles.append(result.toObject()[u"title"].toString());
        titles.sort();
        return titles;
    }

    QProcess _gateway;
};

TEST_F(QuarryRefresh, FindsWhatIsThereAndThenOnlyWhatIsNew)
{
    writeDocument(u"one.md"_s, "# Rye starter\n\nFeeding a rye starter.\n");
    writeDocument(u"two.md"_s, "# Wheat starter\n\nA starter of wheat.\n");
    serveDocuments();
    ASSERT_EQ(run("add starter").status, 0);
    ASSERT_EQ(run("add paused").status, 0);
    ASSERT_EQ(run("disable paused").status, 0);

    const Ran first = run("refresh");
    EXPECT_EQ(first.status, 0) << first.err.toStdString();
    EXPECT_EQ(first.out, u"[1/1] starter: 2 new\n1 query updated: 2 added, 0 excluded, 0 blacklisted\n"
                         "Google, Yahoo, Bing, Ixquick: results\n"_s);
    EXPECT_EQ(newTitles(), (QStringList{u"Rye starter"_s, u"Wheat starter"_s}));
    EXPECT_FALSE(run("schedule --json").json()[u"lastUpdate"].isNull());

    // Too soon: nothing is asked, and nothing is lost.
    const QJsonObject soon = run("refresh starter --json").json();
    EXPECT_EQ(soon[u"recent"].toInt(), 1);
    EXPECT_EQ(soon[u"queries"].toArray()[0].toObject()[u"outcome"].toString(), u"recent"_s);

    writeDocument(u"three.md"_s, "# Spelt starter\n\nNew today.\n");
    const Ran later = run("refresh --quiet --clock-offset 25200");
    EXPECT_EQ(later.status, 0);
    EXPECT_EQ(later.out + later.err, QString());
    EXPECT_EQ(newTitles(), QStringList{u"Spelt starter"_s});
}

TEST_F(QuarryRefresh, AnEditedQueryIsAskedAgainAtOnce)
{
    writeDocument(u"one.md"_s, "# Rye starter\n\nFeeding a rye starter.\n");
    writeDocument(u"two.md"_s, "# Green tea\n\nBrewing.\n");
    serveDocuments();
    ASSERT_EQ(run("add starter --title Mine").status, 0);
    ASSERT_EQ(run("refresh").status, 0);
    ASSERT_EQ(run("edit Mine --text tea").status, 0);
    ASSERT_EQ(run("refresh").status, 0);
    EXPECT_EQ(newTitles(), QStringList{u"Green tea"_s});
}

TEST_F(QuarryRefresh, ServicesThatAreNotThereAreNamed)
{
    ASSERT_EQ(run("services --at http://127.0.0.1:1").status, 0);
    ASSERT_EQ(run("add starter").status, 0);
    const Ran ran = run("refresh --quiet");
    EXPECT_EQ(ran.status, 1);
    for (const QString& said : {u"Bing, Google, Ixquick, Yahoo could not be read (1 time): connection refused"_s,
                                u"some queries were not updated"_s})
        EXPECT_TRUE(ran.err.contains(said)) << ran.err.toStdString();
    EXPECT_EQ(run({u"refresh"_s, u"nothing of that name"_s}).status, 1);
}

TEST_F(QuarryRefresh, AnInterruptIsPassedOnToTheUpdaterAndWaitedFor)
{
    LoopbackServices services;
    services.results = {{SearchService::Google, {u"http://h/"_s}}};
    services.hold("/search?ei="); // Yahoo's.
    ASSERT_EQ(run({u"services"_s, u"--at"_s, services.address("")}).status, 0);
    ASSERT_EQ(run("add starter").status, 0);

    QuarryProcess refresh(home.path(), {u"refresh"_s});
    services.waitUntilHeld();
    // An edit meanwhile goes through and survives.
    EXPECT_EQ(run("rename starter Renamed").status, 0);
    ASSERT_EQ(::kill(static_cast<pid_t>(refresh.process().processId()), SIGINT), 0);
    const Ran ran = refresh.wait();
    EXPECT_EQ(ran.status, 1);
    EXPECT_TRUE(ran.err.contains(u"stopped; what was found by then is kept"_s)) << ran.err.toStdString();
    EXPECT_EQ(run("show Renamed").status, 0);

    // What was seen by then says how the services did; nobody knows what the others would have said.
    const QJsonObject last = run("services --json").json()[u"runs"][0].toObject();
    EXPECT_TRUE(last[u"stopped"].toBool());
    EXPECT_EQ(last[u"services"].toObject().keys(), QStringList{u"Google"_s});
}

} // namespace
} // namespace quarry::test
