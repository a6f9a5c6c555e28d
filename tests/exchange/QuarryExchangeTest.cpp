// `quarry export` and `quarry import`, as people run them.

#include "ExchangeRig.h"
#include "apps/QuarryRig.h"

#include <QDir>
#include <QJsonArray>

namespace quarry::test {
namespace {

QString said(const Ran& ran)
{
    return ran.out + ran.err;
}

class QuarryExchange : public QuarryTest {
protected:
    void SetUp() override { ASSERT_TRUE(writeFile(home->databaseFile(), exported(tree, ExportFormat::QsExport))); }
    /// A line in which "~" stands for the home folder.
    [[nodiscard]] Ran run(const QString& line) const
    {
        return QuarryTest::run(QProcess::splitCommand(QString(line).replace(u'~', home.path())));
    }
    [[nodiscard]] qsizetype results(const QString& line) const
    {
        return run(line).json()[u"results"_s].toArray().size();
    }

    const QueryCorePtr tree = oddTree();
};

TEST_F(QuarryExchange, TenThousandResultsMoveToAnotherHome)
{
    const TemporaryHome to;
    ResultList records;
    for (int i = 1; i <= 10000; ++i)
        records.append(record(u"result %1"_s.arg(i), u"http://h%1.example/p?a=1&b=%1"_s.arg(i), i));
    setResults(queriesBelow(tree).first(), records);
    SetUp();
    const QString file = home.path() + u"/all.qsexport"_s;
    EXPECT_EQ(said(run(u"export -o ~/all.qsexport"_s)), u"Wrote "_s + file + u'\n');
    EXPECT_EQ(said(runQuarry(to.path(), {u"import"_s, file})),
              u"Imported 4 queries and 3 folders with 10001 results\n"_s);
    for (const QString& format : {u"json"_s, u"csv"_s, u"opml"_s}) {
        const Ran there = runQuarry(to.path(), {u"export"_s, u"--format"_s, format});
        EXPECT_EQ(there.status, 0) << there.err.toStdString();
        EXPECT_EQ(there.out, run(u"export --format "_s + format).out);
    }
    EXPECT_EQ(results(u"export"_s), 10000);
}

TEST_F(QuarryExchange, FilesAreReplacedWholeAndOnlyTheOwnerReadsNewOnes)
{
    const QDir folder(home.path());
    const QString link = folder.filePath(u"link.csv"_s);
    const QString target = folder.filePath(u"target"_s);
    ASSERT_TRUE(writeFile(target, "before"));
    ASSERT_TRUE(QFile::setPermissions(target, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup));
    ASSERT_TRUE(QFile::link(target, link));
    const std::tuple<QString, QString, QByteArray, int> cases[] = {
        {u"-o a.opml"_s, u"a.opml"_s, "<?xml", 0x600},
        {u"-o b.ATOM"_s, u"b.ATOM"_s, "<?xml", 0x644},
        {u"inner -o c.qsexport"_s, u"c.qsexport"_s, "bplist", 0x600},
        {u"-o d.txt"_s, u"d.txt"_s, "{", 0x600},
        {u"-o e.txt --format csv"_s, u"e.txt"_s, "query,", 0x600},
        {u"-o link.csv"_s, u"target"_s, "query,", 0x640}};
    for (const auto& [arguments, file, begins, mode] : cases) {
        QuarryProcess quarry(home.path(), (u"export "_s + arguments).split(u' '), home.path());
        const Ran ran = quarry.wait();
        const QString path = folder.filePath(file);
        EXPECT_EQ(said(ran), u"Wrote "_s + path + u'\n');
        EXPECT_TRUE(contentOf(path).startsWith(begins)) << file.toStdString();
        EXPECT_EQ((int(QFileInfo(path).permissions()) >> 4 & 0xf00) | (int(QFileInfo(path).permissions()) & 0xff), mode)
            << file.toStdString();
    }
    EXPECT_TRUE(QFileInfo(link).isSymLink());
    EXPECT_EQ(folder.entryList({u".quarry*"_s}, QDir::Files | QDir::Hidden), QStringList());
}

TEST_F(QuarryExchange, OnlyWhatIsAskedForIsWritten)
{
    EXPECT_EQ(results(u"export --new"_s), 1);
    EXPECT_EQ(results(u"export inner"_s), 3);
    EXPECT_EQ(run(u"export"_s).json(), run(u"results --json"_s).json());
    EXPECT_EQ(run(u"export inner --format opml"_s).out.count(u"<outline"_s), 3);

    const TemporaryHome empty;
    QuarryProcess piped(empty.path(), {u"export"_s, u"--format"_s, u"qsexport"_s});
    ASSERT_TRUE(piped.process().waitForFinished());
    const QByteArray bytes = piped.process().readAllStandardOutput();
    EXPECT_TRUE(bytes.startsWith("bplist"));
    const QString file = empty.path() + u"/empty"_s;
    ASSERT_TRUE(writeFile(file, bytes));
    EXPECT_EQ(said(runQuarry(empty.path(), {u"import"_s, file})),
              u"Imported 0 queries and 0 folders with 0 results\n"_s);
}

TEST_F(QuarryExchange, FaultsAreToldAndChangeNothing)
{
    const QByteArray before = contentOf(home->databaseFile());
    ASSERT_EQ(run(u"export -o ~/good.opml"_s).status, 0);
    ASSERT_TRUE(
        writeFile(home.path() + u"/bad.opml"_s,
                  contentOf(home.path() + u"/good.opml"_s).replace("quarry:kind=\"folder\"", "quarry:kind=\"plain\"")));
    const std::tuple<QString, int, QString> cases[] = {
        {u"export --new --format opml"_s, 2, u"--new goes with results"_s},
        {u"export --format xml"_s, 2, u"must be one of json, csv, opml, atom, qsexport"_s},
        {u"export nothing"_s, 1, u"there is no query or folder \"nothing\""_s},
        {u"export -o ~"_s, 1, u"it is no regular file"_s},
        {u"export -o \""_s + home->databaseFile() + u'"', 1, u"that folder holds the database"_s},
        {u"export -o /proc/self/fd/2"_s, 1, u"it is no regular file"_s},
        {u"export -o ~/none/x.csv"_s, 1, u"No such file or directory"_s},
        {u"import ~/none.opml"_s, 1, u"there is no file ~/none.opml"_s},
        {u"import ~"_s, 1, u"it is no regular file"_s},
        {u"import ~/bad.opml"_s, 1, u"cannot import ~/bad.opml: line 8: a query has outlines below it"_s},
        {u"import ~/good.opml --into nowhere"_s, 1, u"there is no folder \"nowhere\""_s},
    };
    for (const auto& [line, status, complaint] : cases) {
        const Ran ran = run(line);
        EXPECT_EQ(ran.status, status) << line.toStdString();
        EXPECT_TRUE(ran.err.contains(QString(complaint).replace(u'~', home.path()))) << ran.err.toStdString();
        EXPECT_EQ(ran.out, QString());
    }
    EXPECT_EQ(contentOf(home->databaseFile()), before);
    const QString inner = tree->childs()->first()->childs()->first()->UUID();
    const Ran again = run(u"import ~/good.opml --into "_s + inner);
    EXPECT_EQ(again.out, u"Imported 4 queries and 3 folders with 0 results\n7 of them got new IDs, since theirs are "
                         "taken\n"_s)
        << again.err.toStdString();
    const QJsonArray listed = run(u"list --json "_s + inner).json()[u"queries"_s].toArray();
    EXPECT_EQ(listed[0].toObject()[u"children"_s].toArray().size(), 4);
}

} // namespace
} // namespace quarry::test
