// What people and broken files do to the command line.

#include "QuarryRig.h"

#include <QDir>
#include <QDirIterator>
#include <QJsonArray>

using namespace Qt::Literals::StringLiterals;

namespace quarry::test {
namespace {

QByteArray goldenDatabase()
{
    return contentOf(QStringLiteral(QUARRY_TEST_DATA "/golden/db.qsdata"));
}

QStringList everythingIn(const QString& folder)
{
    QStringList found;
    QDirIterator walk(folder, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (walk.hasNext())
        found.append(walk.next());
    return found;
}

TEST(QuarryInput, WrongUseIsStatusTwoAndAWordAboutIt)
{
    const TemporaryHome home;
    const struct {
        QStringList arguments;
        QString complaint;
    } cases[] = {
        {{}, u"a command is missing"_s},
        {{u"frobnicate"_s}, u"there is no command \"frobnicate\""_s},
        {{u"list"_s, u"--bogus"_s}, u"--bogus"_s},
        {{u"add"_s}, u"a query needs words"_s},
        {{u"add"_s, u""_s}, u"a query needs words"_s},
        {{u"add"_s, u"  "_s}, u"a query needs words"_s},
        {{u"combine"_s, u"--text"_s, u"b"_s, u"--text"_s, u"b"_s}, u"two texts or more that differ"_s},
        {{u"combine"_s, u"--text"_s, u"b"_s, u"--text"_s, u" "_s}, u"a --text is empty"_s},
        {{u"add"_s, u"a"_s, u"--words"_s, u"some"_s}, u"must be one of any, exact, in-page"_s},
        {{u"add"_s, u"a"_s, u"--url-regex"_s, u"a(b)(open"_s}, u"not balanced\n  a(b)(open\n      ^"_s},
        {{u"add-folder"_s, u" "_s}, u"a folder needs a name"_s},
        {{u"show"_s, u""_s}, u"is empty"_s},
        {{u"move"_s, u"a"_s}, u"either --into FOLDER or --top"_s},
        {{u"prefs"_s, u"--new-links"_s, u"-1"_s}, u"whole number"_s},
        {{u"services"_s, u"Altavista"_s, u"--off"_s}, u"there is no service \"Altavista\""_s},
        {{u"services"_s, u"--at"_s, u"http://127.0.0.1/path"_s}, u"no address of a service"_s},
        {{u"services"_s, u"--on"_s, u"--off"_s}, u"exclude each other"_s},
        {{u"blacklist"_s}, u"blacklist: a command is missing\nsee quarry blacklist --help"_s},
        {{u"blacklist"_s, u"add"_s, u" "_s}, u"a rule needs a text"_s},
        {{u"blacklist"_s, u"add"_s, u"--type"_s, u"domain"_s, u"a b"_s}, u"\"a b\" names no host"_s},
        {{u"blacklist"_s, u"add"_s, u"--type"_s, u"regex"_s, u"ab(c[z-a]d"_s}, u"\n  ab(c[z-a]d\n         ^"_s},
        {{u"blacklist"_s, u"remove"_s, u"1"_s}, u"there is no rule \"1\""_s},
        {{u"log"_s, u"--lines"_s, u"0"_s}, u"whole number from 1 to 5000"_s},
        {{u"schedule"_s, u"every"_s, u"-5"_s}, u"number of minutes from 1 to 1000000"_s},
        {{u"schedule"_s, u"every"_s}, u"on, off, or every"_s},
    };
    for (const auto& each : cases) {
        const Ran ran = runQuarry(home.path(), each.arguments);
        EXPECT_EQ(ran.status, 2) << each.arguments.join(u' ').toStdString();
        EXPECT_TRUE(ran.err.contains(each.complaint)) << ran.err.toStdString();
        EXPECT_TRUE(ran.out.isEmpty()) << ran.out.toStdString();
    }
    EXPECT_FALSE(QFile::exists(home->databaseFile()));
}

TEST(QuarryInput, EveryCommandHasHelpWithExamples)
{
    const QString commands =
        u"list show results add combine add-folder edit rename move remove enable disable read unread hide "
        "unhide rate exclude offline refresh export import agent prefs schedule services blacklist log"_s;
    for (const QString& command : commands.split(u' ')) {
        const Ran ran = runQuarry(QString(), {command, u"--help"_s});
        EXPECT_EQ(ran.status, 0) << command.toStdString();
        EXPECT_TRUE(ran.out.contains(u"Examples:\n  quarry "_s + command)) << ran.out.toStdString();
    }
}

TEST(QuarryInput, CompletionKnowsCommandsOptionsAndTitles)
{
    const TemporaryHome home;
    ASSERT_EQ(runQuarry(home.path(), {u"add"_s, u"raised bed"_s}).status, 0);
    const struct {
        QStringList typed;
        QString completed;
    } cases[] = {
        {{u"re"_s}, u"results rename remove read refresh"_s},
        {{u"results"_s, u"--s"_s}, u"--sort --search"_s},
        {{u"results"_s, u"--sort"_s, u"r"_s}, u"rank rating"_s},
        {{u"unhide"_s, u"--hi"_s}, u""_s}, // An option that its help mentions.
        {{u"services"_s, u"B"_s}, u"Bing"_s},
        {{u"--home"_s, home.path(), u"show"_s, u"RAI"_s}, u"raised\\ bed"_s},
        {{u"--home"_s, home.path(), u"show"_s, u"x"_s}, u""_s},
        {{u"blacklist"_s, u"a"_s}, u"add"_s},
        {{u"agent"_s, u"st"_s}, u"start stop status"_s},
        {{u"schedule"_s, u"o"_s}, u"on off"_s},
        {{u"--home"_s, home.path(), u"export"_s, u"RAI"_s}, u"raised\\ bed"_s},
        {{u"--home"_s, home.path(), u"import"_s, u"x"_s, u"--into"_s, u"RAI"_s}, u"raised\\ bed"_s},
        {{u"blacklist"_s, u"add"_s, u"--t"_s}, u"--type"_s},
        {{u"--home"_s, home.path(), u"offline"_s, u"copy"_s, u"RAI"_s}, u"raised\\ bed"_s},
    };
    for (const auto& each : cases) {
        QProcess bash;
        bash.start(u"bash"_s,
                   QStringList{u"-c"_s, uR"(PATH="$1:$PATH"; . "$2"; shift 2; COMP_WORDS=(quarry "$@"); COMP_CWORD=$#
                                              _quarry; printf '%s' "${COMPREPLY[*]}")"_s,
                               u"bash"_s, QStringLiteral(QUARRY_BUNDLE_DIR "/bin"),
                               QStringLiteral(QUARRY_TEST_DATA "/../../resources/completion/quarry.bash")} +
                       each.typed);
        ASSERT_TRUE(bash.waitForFinished());
        EXPECT_EQ(QString::fromUtf8(bash.readAllStandardOutput()), each.completed)
            << each.typed.join(u' ').toStdString();
    }
}

TEST(QuarryInput, ReadingMakesNothingInAHomeWhereNothingIs)
{
    const QTemporaryDir home;
    for (const QStringList& arguments : {QStringList{u"list"_s},
                                         {u"list"_s, u"--json"_s},
                                         {u"results"_s},
                                         {u"prefs"_s},
                                         {u"schedule"_s},
                                         {u"services"_s}})
        EXPECT_EQ(runQuarry(home.path(), arguments).status, 0) << arguments.join(u' ').toStdString();
    EXPECT_EQ(runQuarry(home.path(), {u"show"_s, u"something"_s}).status, 1);
    EXPECT_TRUE(everythingIn(home.path()).isEmpty()) << everythingIn(home.path()).join(u' ').toStdString();
}

TEST(QuarryInput, AHomeThatIsNoneIsNamed)
{
    const QTemporaryDir folder;
    const QString missing = folder.filePath(u"missing"_s);
    const QString file = folder.filePath(u"file"_s);
    ASSERT_TRUE(writeFile(file, "x"));
    for (const QStringList& arguments : {QStringList{u"list"_s},
                                         {u"add"_s, u"x"_s},
                                         {u"prefs"_s, u"--new-links"_s, u"3"_s},
                                         {u"services"_s, u"--off"_s},
                                         {u"schedule"_s},
                                         {u"refresh"_s}}) {
        for (const QString& home : {missing, file}) {
            const Ran ran = runQuarry(home, arguments);
            EXPECT_EQ(ran.status, 1) << arguments.join(u' ').toStdString();
            EXPECT_TRUE(ran.err.contains(home)) << ran.err.toStdString();
        }
    }
    EXPECT_FALSE(QFile::exists(missing));
}

TEST(QuarryInput, ADatabaseThatMakesNoSenseIsToldAndLeftAlone)
{
    const QByteArray whole = goldenDatabase();
    ASSERT_FALSE(whole.isEmpty());
    QList<QByteArray> contents = {
        "no property list at all",
        "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>a</key><true/></dict></plist>"};
    for (int part = 1; part < 8; ++part)
        contents.append(whole.left(whole.size() * part / 8));
    for (const QByteArray& content : contents) {
        const TemporaryHome home;
        ASSERT_TRUE(writeFile(home->databaseFile(), content));
        for (const QStringList& arguments : {QStringList{u"list"_s}, {u"add"_s, u"x"_s}, {u"refresh"_s}}) {
            const Ran ran = runQuarry(home.path(), arguments);
            EXPECT_EQ(ran.status, 1) << arguments.join(u' ').toStdString();
            EXPECT_TRUE(ran.err.contains(u"the database cannot be read"_s)) << ran.err.toStdString();
            EXPECT_TRUE(ran.out.isEmpty()) << ran.out.toStdString();
        }
        EXPECT_EQ(contentOf(home->databaseFile()), content);
        const QStringList copies = QDir(home->supportFolder()).entryList({u"Database.damaged-*.qsdata"_s});
        ASSERT_EQ(copies.size(), 1);
        EXPECT_EQ(contentOf(home->supportFolder() + u'/' + copies.first()), content);
    }
}

TEST(QuarryInput, HostileTextsDoNotDriveTheTerminal)
{
    const TemporaryHome home;
    const QString hostile = QStringLiteral("a\x1b]0;owned\x07 \u009b31m\u202eb\r\nc\u2066");
    ASSERT_EQ(runQuarry(home.path(), {u"add"_s, u"x"_s, u"--title"_s, hostile}).status, 0);
    for (const QStringList& arguments :
         {QStringList{u"list"_s}, {u"show"_s, u"a]0;owned"_s}, {u"list"_s, u"--json"_s}, {u"show"_s, u"x"_s}}) {
        const Ran ran = runQuarry(home.path(), arguments);
        for (const char16_t c : {u'\x1b', u'\x07', u'\u009b', u'\u202e', u'\r', u'\u2066'})
            EXPECT_FALSE((ran.out + ran.err).contains(QChar(c))) << int(c);
    }
    EXPECT_EQ(runQuarry(home.path(), {u"list"_s, u"--json"_s})
                  .json()[u"queries"_s]
                  .toArray()[0]
                  .toObject()[u"title"_s]
                  .toString(),
              hostile);
    EXPECT_TRUE(runQuarry(home.path(), {u"list"_s}).out.contains(u"a]0;owned 31mb c"_s));
}

} // namespace
} // namespace quarry::test
