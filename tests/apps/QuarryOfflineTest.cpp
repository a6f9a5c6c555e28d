// quarry offline copy: the real program, the pages on a loopback server.

#include "UpdaterRig.h"
#include "platform/FileLock.h"
#include "support/QuarryProcess.h"
#include "support/SessionBusDaemon.h"

#include <QDir>

#include <csignal>
#include <filesystem>

using namespace Qt::Literals::StringLiterals;

namespace quarry::test {
namespace {

class QuarryOffline : public UpdaterTest {
protected:
    /// Results that Google named, their IDs A, B, ...
    void addQueryWithResults(const QStringList& addresses)
    {
        edit([&](const QueryCorePtr& root) {
            ResultList records;
            for (qsizetype i = 0; i < addresses.size(); ++i)
                records.append(ResultRecord()
                                   .withUrl(Url::fromText(addresses[i]).value())
                                   .withEngineId(u"1"_s)
                                   .withLinkUuid(QChar(u'A' + int(i))));
            const QueryCorePtr node = QueryCore::initWithQuery(u"bees"_s);
            EXPECT_TRUE(node->replaceResultsIfUnchanged(node->snapshot().generation, records, Date::reference()));
            root->addChild(node);
        });
    }
    [[nodiscard]] Ran copy(const QString& to)
    {
        return runQuarry(home.path(), {u"offline"_s, u"copy"_s, u"bees"_s, to});
    }
    /// Everything in a folder, hidden or not.
    [[nodiscard]] static QStringList names(const QString& path)
    {
        return QDir(path).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    }

    QString folder = home.path() + u"/Reading"_s;
};

TEST_F(QuarryOffline, CopiesOnceAndOnlyWhatTheServiceMayName)
{
    services.pages = {{"/a", "<p>Where the <b>bees</b> are.</p>"}};
    addQueryWithResults({services.address("/a"), services.address("/b.pdf"), u"http://127.0.0.1:1/"_s});
    const QString leftover = folder + u"/.quarryOffline-killed"_s;
    ASSERT_TRUE(QDir().mkpath(leftover + u"/ID"_s));
    const std::filesystem::path system = leftover.toStdString();
    std::filesystem::last_write_time(system, std::filesystem::last_write_time(system) - std::chrono::hours(1));

    const Ran first = copy(folder);
    EXPECT_EQ(first.status, 0) << first.err.toStdString();
    const QString counts = u"1 page, 1 without text, 1 could not be read\n"_s;
    EXPECT_EQ(first.out, u"[1/1] bees: "_s + counts + u"1 query copied to "_s + folder + u": "_s + counts);
    const QString uuid = query(u"bees"_s)->UUID();
    EXPECT_EQ(names(folder), QStringList{uuid});
    EXPECT_EQ(names(folder + u'/' + uuid), (QStringList{u"A"_s, u"B"_s, u"C"_s}));
    EXPECT_EQ(contentOf(folder + u'/' + uuid + u"/A"_s), "Where the bees are.");

    const std::size_t requests = services.requestCount();
    const Ran again = copy(folder);
    EXPECT_EQ(again.status, 0);
    EXPECT_TRUE(again.out.contains(u"a copy is there already"_s)) << again.out.toStdString();

    // A public service cannot name pages on this machine.
    ASSERT_EQ(runQuarry(home.path(), {u"services"_s, u"--reset"_s}).status, 0);
    const QString other = home.path() + u"/Other"_s;
    const Ran refused = copy(other);
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(refused.err.contains(u"none of its pages could be read"_s)) << refused.err.toStdString();
    EXPECT_EQ(names(other), QStringList());
    EXPECT_EQ(services.requestCount(), requests);
}

void interrupt(QProcess& process)
{
    EXPECT_EQ(::kill(static_cast<pid_t>(process.processId()), SIGINT), 0);
}

TEST_F(QuarryOffline, AStoppedCopyLeavesNothingThatLooksComplete)
{
    const SessionBusDaemon daemon;
    services.pages = {{"/a", "<p>One.</p>"}, {"/slow", "<p>Two.</p>"}};
    addQueryWithResults({services.address("/a"), services.address("/slow"), services.address("/a?3")});
    for (void (*const stop)(QProcess&) : {interrupt, askEverybodyToQuit}) {
        services.hold("/slow");
        QuarryProcess copying(home.path(), {u"offline"_s, u"copy"_s, u"bees"_s, folder, u"--json"_s});
        services.waitUntilHeld();
        ASSERT_EQ(names(folder).size(), 1);
        EXPECT_TRUE(names(folder)[0].startsWith(u'.'));
        stop(copying.process());
        const Ran ran = copying.wait();
        EXPECT_EQ(ran.status, 1);
        EXPECT_TRUE(ran.err.contains(u"stopped"_s)) << ran.err.toStdString();
        EXPECT_TRUE(ran.json()[u"stopped"].toBool());
        EXPECT_EQ(names(folder), QStringList());
    }
    EXPECT_EQ(services.requestCount(), 4U);
}

TEST_F(QuarryOffline, AnImportThatWaitsForAnotherProgramEndsWhenEverybodyIsAskedToQuit)
{
    const SessionBusDaemon daemon;
    addQuery(u"bees"_s);
    const QString file = home.path() + u"/kept.qsexport"_s;
    ASSERT_EQ(runQuarry(home.path(), {u"export"_s, u"-o"_s, file}).status, 0);
    const auto lock = FileLock::tryAcquire(home->writerLockFile());
    ASSERT_TRUE(lock);
    QuarryProcess importing(home.path(), {u"import"_s, file});
    askEverybodyToQuit(importing.process());
    const Ran ran = importing.wait();
    EXPECT_EQ(ran.status, 1);
    EXPECT_TRUE(ran.err.contains(u"asked to quit"_s)) << ran.err.toStdString();
}

TEST_F(QuarryOffline, SaysWhyAFolderCannotBeWritten)
{
    addQueryWithResults({services.address("/a")});
    ASSERT_TRUE(writeFile(folder, "a file"));
    const Ran ran = copy(folder);
    EXPECT_EQ(ran.status, 1);
    EXPECT_TRUE(ran.err.contains(u"cannot write into "_s + folder + u": Not a directory"_s)) << ran.err.toStdString();
    EXPECT_EQ(services.requestCount(), 0U);
}

} // namespace
} // namespace quarry::test
