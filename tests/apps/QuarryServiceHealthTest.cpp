// How the services did, as a person sees it after real refreshes: quarry, the updater and servers on loopback.

#include "QuarryRig.h"
#include "support/LoopbackServer.h"
#include "support/ServicePages.h"

#include <QJsonArray>

using namespace Qt::Literals::StringLiterals;

namespace quarry::test {
namespace {

class QuarryServiceHealth : public QuarryTest {
protected:
    QuarryServiceHealth()
    {
        EXPECT_EQ(run("prefs --results-per-service 10").status, 0);
        EXPECT_EQ(run("add starter").status, 0);
    }
    void pointAt(const QStringList& services, const QByteArray& address) const
    {
        ASSERT_EQ(
            run(QStringList{u"services"_s} + services + QStringList{u"--at"_s, QString::fromLatin1(address)}).status,
            0);
    }
    /// "verdict text" of a service in the latest run, as programs get it; empty without any.
    [[nodiscard]] QString health(const QString& name) const
    {
        for (const QJsonValue service : run("services --json").json()[u"services"].toArray()) {
            const QJsonObject found = service[u"health"].toObject();
            if (service[u"name"].toString() == name && !found.isEmpty())
                return found[u"verdict"].toString() + u' ' + found[u"text"].toString();
        }
        return {};
    }
};

TEST_F(QuarryServiceHealth, EachServiceIsJudgedByARealRefresh)
{
    LoopbackServer server([](const QByteArray& head, const LoopbackServer::Send& send) {
        const SearchService service = serviceOf(head.left(head.indexOf('\r'))).value();
        if (service == SearchService::Google)
            send(LoopbackServer::reply("Slow down.", "429 Too Many Requests"));
        else if (service == SearchService::Yahoo)
            send(LoopbackServer::reply("<body>\xFF\xFE \x01 no list</body>"));
        else
            send(LoopbackServer::reply("<body>No document matches <b>starter</b>.</body>"));
    });
    pointAt({}, server.address());
    pointAt({u"Bing"_s}, "http://127.0.0.1:1");
    const Ran refresh = run("refresh");
    EXPECT_EQ(refresh.status, 0) << "what services are like changes nothing in how a refresh ends";
    EXPECT_TRUE(refresh.out.endsWith(u"\nGoogle: blocked (HTTP status 429); Yahoo: layout not recognised; "
                                     "Bing: unreachable (connection refused, or no way to the host); "
                                     "Ixquick: nothing found\n"_s))
        << refresh.out.toStdString();
    EXPECT_TRUE(refresh.err.contains(u"Yahoo could not be read (1 time): its pages hold no list of results"_s))
        << refresh.err.toStdString();

    EXPECT_EQ(health(u"Google"_s), u"blocked blocked (HTTP status 429)"_s);
    EXPECT_EQ(health(u"Yahoo"_s), u"layout layout not recognised"_s);
    EXPECT_EQ(health(u"Bing"_s), u"unreachable unreachable (connection refused, or no way to the host)"_s);
    EXPECT_EQ(health(u"Ixquick"_s), u"none nothing found"_s);
    EXPECT_EQ(health(u"Exalead"_s), QString()) << "it is not read";
    const QString table = run("services").out;
    EXPECT_TRUE(table.contains(u"1 page                blocked (HTTP status 429)\n"_s)) << table.toStdString();

    // What was seen at one address says nothing about another.
    pointAt({u"Bing"_s}, server.address());
    EXPECT_EQ(health(u"Bing"_s), QString());
    const QJsonArray runs = run("services --json").json()[u"runs"].toArray();
    ASSERT_EQ(runs.size(), 1);
    EXPECT_EQ(runs[0][u"services"][u"Bing"][u"address"].toString(), u"http://127.0.0.1:1"_s);
    EXPECT_EQ(runs[0][u"services"][u"Google"][u"statuses"].toObject(), (QJsonObject{{u"429"_s, 1}}));
}

TEST_F(QuarryServiceHealth, AChallengeThatComesAsAFaultIsSeenAndResultsAreCounted)
{
    LoopbackServer server([](const QByteArray& head, const LoopbackServer::Send& send) {
        const SearchService service = serviceOf(head.left(head.indexOf('\r'))).value();
        if (service == SearchService::Google)
            send(LoopbackServer::reply("<form id=\"challenge-form\"></form>" + QByteArray(1 << 20, 'x'),
                                       "503 Service Unavailable"));
        else
            send(LoopbackServer::reply(resultPage(service, {u"http://h/"_s + QString::number(int(service))})));
    });
    pointAt({}, server.address());
    const QJsonObject refresh = run("refresh --json").json();
    ASSERT_EQ(refresh[u"services"].toArray().size(), 4);
    const QJsonObject google = refresh[u"services"].toArray()[0].toObject();
    EXPECT_EQ(google[u"service"].toString() + u' ' + google[u"text"].toString(), u"Google blocked (HTTP status 503)"_s);
    const QJsonObject yahoo = refresh[u"services"].toArray()[1].toObject();
    EXPECT_EQ(yahoo[u"verdict"].toString(), u"results"_s);
    EXPECT_EQ(yahoo[u"results"].toInt(), 1);
    EXPECT_GT(yahoo[u"bytes"].toInt(), 0);

    // Nothing is asked again so soon: the latest run that asked is what is shown.
    ASSERT_EQ(run("refresh").status, 0);
    EXPECT_EQ(health(u"Google"_s), u"blocked blocked (HTTP status 503)"_s);
    EXPECT_EQ(run("services --json").json()[u"runs"].toArray().size(), 1);
}

} // namespace
} // namespace quarry::test
