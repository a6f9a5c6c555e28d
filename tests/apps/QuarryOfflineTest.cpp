// quarry offline copy: the real program, the pages on a loopback server.

#include "UpdaterRig.h"
#include "support/QuarryProcess.h"

#include <QDir>

#include <csignal>
#include <filesystem>

namespace quarry {
namespace {

using test::Ran;
using test::runQuarry;

class QuarryOffline : public test::UpdaterTest {
protected:
    /// Results that Google named, their IDs A, B, ...
    void addQueryWithResults(const QStringList& addresses)
    {
        edit([&](const QueryCorePtr& root) {
            ResultList records;
            for (qsizetype i = 0; i < addresses.size(); ++i)
                records.append(ResultRecord()
                                   .withUrl(Url::fromText(addresses[i]).value())
                                   .withEngineId(u"1"_qs)
                                   .withLinkUuid(QChar(u'A' + int(i))));
            const QueryCorePtr node = QueryCore::initWithQuery(u"bees"_qs);
            EXPECT_TRUE(node->replaceResultsIfUnchanged(node->snapshot().generation, records, Date::reference()));
            root->addChild(node);
        });
    }
    [[nodiscard]] Ran copy(const QString& to)
    {
        return runQuarry(home.path(), {u"offline"_qs, u"copy"_qs, u"bees"_qs, to});
    }
    /// Everything in a folder, hidden or not.
    [[nodiscard]] static QStringList names(const QString& path)
    {
        return QDir(path).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    }

    QString folder = home.path() + u"/Reading"_qs;
};

TEST_F(QuarryOffline, CopiesOnceAndOnlyWhatTheServiceMayName)
{
    services.pages = {{"/a", "<p>Where the <b>bees</b> are.</p>"}};
    addQueryWithResults({services.address("/a"), services.address("/b.pdf"), u"http://127.0.0.1:1/"_qs});
    const QString leftover = folder + u"/.quarryOffline-killed"_qs;
    ASSERT_TRUE(QDir().mkpath(leftover + u"/ID"_qs));
    const std::filesystem::path system = leftover.toStdString();
    std::filesystem::last_write_time(system, std::filesystem::last_write_time(system) - std::chrono::hours(1));

    const Ran first = copy(folder);
    EXPECT_EQ(first.status, 0) << first.err.toStdString();
    const QString counts = u"1 page, 1 without text, 1 could not be read\n"_qs;
    EXPECT_EQ(first.out, u"[1/1] bees: "_qs + counts + u"1 query copied to "_qs + folder + u": "_qs + counts);
    const QString uuid = query(u"bees"_qs)->UUID();
    EXPECT_EQ(names(folder), QStringList{uuid});
    EXPECT_EQ(names(folder + u'/' + uuid), (QStringList{u"A"_qs, u"B"_qs, u"C"_qs}));
    EXPECT_EQ(test::contentOf(folder + u'/' + uuid + u"/A"_qs), "Where the bees are.");

    const std::size_t requests = services.requestCount();
    const Ran again = copy(folder);
    EXPECT_EQ(again.status, 0);
    EXPECT_TRUE(again.out.contains(u"a copy is there already"_qs)) << again.out.toStdString();

    // A public service cannot name pages on this machine.
    ASSERT_EQ(runQuarry(home.path(), {u"services"_qs, u"--reset"_qs}).status, 0);
    const QString other = home.path() + u"/Other"_qs;
    const Ran refused = copy(other);
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(refused.err.contains(u"none of its pages could be read"_qs)) << refused.err.toStdString();
    EXPECT_EQ(names(other), QStringList());
    EXPECT_EQ(services.requestCount(), requests);
}

TEST_F(QuarryOffline, AnInterruptLeavesNothingThatLooksComplete)
{
    services.pages = {{"/a", "<p>One.</p>"}, {"/slow", "<p>Two.</p>"}};
    services.hold("/slow");
    addQueryWithResults({services.address("/a"), services.address("/slow"), services.address("/a?3")});
    test::QuarryProcess copying(home.path(), {u"offline"_qs, u"copy"_qs, u"bees"_qs, folder, u"--json"_qs});
    services.waitUntilHeld();
    ASSERT_EQ(names(folder).size(), 1);
    EXPECT_TRUE(names(folder)[0].startsWith(u'.'));
    ASSERT_EQ(::kill(static_cast<pid_t>(copying.process().processId()), SIGINT), 0);
    const Ran ran = copying.wait();
    EXPECT_EQ(ran.status, 1);
    EXPECT_TRUE(ran.err.contains(u"stopped"_qs)) << ran.err.toStdString();
    EXPECT_TRUE(ran.json()[u"stopped"].toBool());
    EXPECT_EQ(names(folder), QStringList());
    EXPECT_EQ(services.requestCount(), 2U);
}

TEST_F(QuarryOffline, SaysWhyAFolderCannotBeWritten)
{
    addQueryWithResults({services.address("/a")});
    ASSERT_TRUE(test::writeFile(folder, "a file"));
    const Ran ran = copy(folder);
    EXPECT_EQ(ran.status, 1);
    EXPECT_TRUE(ran.err.contains(u"cannot write into "_qs + folder + u": Not a directory"_qs)) << ran.err.toStdString();
    EXPECT_EQ(services.requestCount(), 0U);
}

} // namespace
} // namespace quarry
