// `quarry export` and `quarry import`, as people run them.

#include "ExchangeRig.h"
#include "platform/FileStore.h"
#include "support/QuarryProcess.h"
#include "support/TemporaryHome.h"

#include <QDir>
#include <QJsonArray>

namespace quarry::test {
namespace {

void saveTo(const HomeFolder& home, const QueryCorePtr& root)
{
    ASSERT_TRUE(writeFile(home.databaseFile(), exported(root, ExportFormat::QsExport)));
}

QString said(const Ran& ran)
{
    return ran.out + ran.err;
}

TEST(QuarryExchange, TenThousandResultsMoveToAnotherHome)
{
    const TemporaryHome from;
    const TemporaryHome to;
    const QueryCorePtr tree = oddTree();
    ResultList records;
    for (int i = 1; i <= 10000; ++i)
        records.append(record(u"result %1"_s.arg(i), u"http://h%1.example/p?a=1&b=%1"_s.arg(i), i));
    setResults(queriesBelow(tree).first(), records);
    saveTo(from, tree);
    const QString file = from.path() + u"/all.qsexport"_s;
    EXPECT_EQ(said(runQuarry(from.path(), {u"export"_s, u"-o"_s, file})), u"Wrote "_s + file + u'\n');
    EXPECT_EQ(said(runQuarry(to.path(), {u"import"_s, file})),
              u"Imported 4 queries and 3 folders with 10001 results\n"_s);
    for (const QString& format : {u"json"_s, u"csv"_s, u"opml"_s}) {
        const Ran there = runQuarry(to.path(), {u"export"_s, u"--format"_s, format});
        EXPECT_EQ(there.status, 0) << there.err.toStdString();
        EXPECT_EQ(there.out, runQuarry(from.path(), {u"export"_s, u"--format"_s, format}).out);
    }
    EXPECT_EQ(runQuarry(to.path(), {u"export"_s}).json()[u"results"_s].toArray().size(), 10000);
}

TEST(QuarryExchange, FilesAreReplacedWholeAndOnlyTheOwnerReadsNewOnes)
{
    const TemporaryHome home;
    saveTo(home, oddTree());
    const QDir folder(home.path());
    const QString link = folder.filePath(u"link.csv"_s);
    const QString target = folder.filePath(u"target"_s);
    ASSERT_TRUE(writeFile(target, "before"));
    ASSERT_TRUE(QFile::setPermissions(target, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup));
    ASSERT_TRUE(QFile::link(target, link));
    const struct {
        QStringList arguments;
        QString file;
        QByteArray begins;
        int mode;
    } cases[] = {{{u"-o"_s, u"a.opml"_s}, u"a.opml"_s, "<?xml", 0x600},
                 {{u"-o"_s, u"b.ATOM"_s}, u"b.ATOM"_s, "<?xml", 0x644},
                 {{u"inner"_s, u"-o"_s, u"c.qsexport"_s}, u"c.qsexport"_s, "bplist", 0x600},
                 {{u"-o"_s, u"d.txt"_s}, u"d.txt"_s, "{", 0x600},
                 {{u"-o"_s, u"e.txt"_s, u"--format"_s, u"csv"_s}, u"e.txt"_s, "query,", 0x600},
                 {{u"-o"_s, u"link.csv"_s}, u"target"_s, "query,", 0x640}};
    for (const auto& each : cases) {
        QuarryProcess quarry(home.path(), QStringList{u"export"_s} + each.arguments, home.path());
        const Ran ran = quarry.wait();
        const QString path = folder.filePath(each.file);
        EXPECT_EQ(said(ran), u"Wrote "_s + path + u'\n');
        EXPECT_TRUE(contentOf(path).startsWith(each.begins)) << each.file.toStdString();
        EXPECT_EQ((int(QFileInfo(path).permissions()) >> 4 & 0xf00) | (int(QFileInfo(path).permissions()) & 0xff),
                  each.mode)
            << each.file.toStdString();
    }
    EXPECT_TRUE(QFileInfo(link).isSymLink());
    EXPECT_EQ(folder.entryList({u".quarry*"_s}, QDir::Files | QDir::Hidden), QStringList());
}

TEST(QuarryExchange, OnlyWhatIsAskedForIsWritten)
{
    const TemporaryHome home;
    saveTo(home, oddTree());
    EXPECT_EQ(runQuarry(home.path(), {u"export"_s, u"--new"_s}).json()[u"results"_s].toArray().size(), 1);
    EXPECT_EQ(runQuarry(home.path(), {u"export"_s, u"inner"_s}).json()[u"results"_s].toArray().size(), 3);
    EXPECT_EQ(runQuarry(home.path(), {u"export"_s}).json(), runQuarry(home.path(), {u"results"_s, u"--json"_s}).json());
    const QString opml = runQuarry(home.path(), {u"export"_s, u"inner"_s, u"--format"_s, u"opml"_s}).out;
    EXPECT_EQ(opml.count(u"<outline"_s), 3);

    const TemporaryHome empty;
    QuarryProcess piped(empty.path(), {u"export"_s, u"--format"_s, u"qsexport"_s});
    ASSERT_TRUE(piped.process().waitForFinished());
    const QByteArray bytes = piped.process().readAllStandardOutput();
    EXPECT_TRUE(bytes.startsWith("bplist"));
    ASSERT_TRUE(writeFile(empty.path() + u"/empty"_s, bytes));
    EXPECT_EQ(said(runQuarry(empty.path(), {u"import"_s, empty.path() + u"/empty"_s})),
              u"Imported 0 queries and 0 folders with 0 results\n"_s);
}

TEST(QuarryExchange, FaultsAreToldAndChangeNothing)
{
    const TemporaryHome home;
    const QueryCorePtr tree = oddTree();
    saveTo(home, tree);
    const QByteArray before = contentOf(home->databaseFile());
    const QString good = home.path() + u"/good.opml"_s;
    const QString bad = home.path() + u"/bad.opml"_s;
    ASSERT_EQ(runQuarry(home.path(), {u"export"_s, u"-o"_s, good}).status, 0);
    ASSERT_TRUE(writeFile(bad, contentOf(good).replace("quarry:kind=\"folder\"", "quarry:kind=\"plain\"")));
    const struct {
        QStringList arguments;
        int status;
        QString complaint;
    } cases[] = {
        {{u"export"_s, u"--new"_s, u"--format"_s, u"opml"_s}, 2, u"--new goes with results"_s},
        {{u"export"_s, u"--format"_s, u"xml"_s}, 2, u"must be one of json, csv, opml, atom, qsexport"_s},
        {{u"export"_s, u"nothing"_s}, 1, u"there is no query or folder \"nothing\""_s},
        {{u"export"_s, u"-o"_s, home.path()}, 1, u"it is no regular file"_s},
        {{u"export"_s, u"-o"_s, home->databaseFile()}, 1, u"that folder holds the database"_s},
        {{u"export"_s, u"-o"_s, u"/proc/self/fd/2"_s}, 1, u"it is no regular file"_s},
        {{u"export"_s, u"-o"_s, home.path() + u"/none/x.csv"_s}, 1, u"No such file or directory"_s},
        {{u"import"_s, home.path() + u"/none.opml"_s}, 1, u"there is no file "_s + home.path() + u"/none.opml"_s},
        {{u"import"_s, home.path()}, 1, u"it is no regular file"_s},
        {{u"import"_s, bad}, 1, u"cannot import "_s + bad + u": line 8: a query has outlines below it"_s},
        {{u"import"_s, good, u"--into"_s, u"nowhere"_s}, 1, u"there is no folder \"nowhere\""_s},
    };
    for (const auto& each : cases) {
        const Ran ran = runQuarry(home.path(), each.arguments);
        EXPECT_EQ(ran.status, each.status) << each.arguments.join(u' ').toStdString();
        EXPECT_TRUE(ran.err.contains(each.complaint)) << ran.err.toStdString();
        EXPECT_EQ(ran.out, QString());
    }
    EXPECT_EQ(contentOf(home->databaseFile()), before);
    const QString inner = tree->childs()->first()->childs()->first()->UUID();
    const Ran again = runQuarry(home.path(), {u"import"_s, good, u"--into"_s, inner});
    EXPECT_EQ(again.out, u"Imported 4 queries and 3 folders with 0 results\n7 of them got new IDs, since theirs are "
                         "taken\n"_s)
        << again.err.toStdString();
    const QJsonArray listed = runQuarry(home.path(), {u"list"_s, inner, u"--json"_s}).json()[u"queries"_s].toArray();
    EXPECT_EQ(listed[0].toObject()[u"children"_s].toArray().size(), 4);
}

} // namespace
} // namespace quarry::test
