// The tree, made and changed by real commands.

#include "support/QuarryProcess.h"
#include "support/TemporaryHome.h"

#include <QJsonArray>
#include <QRegularExpression>

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace quarry::test {
namespace {

struct Step {
    QStringList arguments;
    int status;
    QString said; ///< In the output when it is done, among the complaints otherwise; %ID stands for an ID.
};

QString withoutIds(QString text)
{
    static const QRegularExpression ids(QStringLiteral("[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}|[0-9A-F]{8}"));
    return text.replace(ids, QStringLiteral("%ID"));
}

void runSteps(const QString& home, const std::vector<Step>& steps)
{
    for (const Step& step : steps) {
        const Ran ran = runQuarry(home, step.arguments);
        EXPECT_EQ(ran.status, step.status) << step.arguments.join(u' ').toStdString() << '\n' << ran.err.toStdString();
        EXPECT_TRUE(withoutIds(step.status == 0 ? ran.out : ran.err).contains(step.said))
            << step.arguments.join(u' ').toStdString() << '\n'
            << ran.out.toStdString() << ran.err.toStdString();
        EXPECT_TRUE((step.status == 0 ? ran.err : ran.out).isEmpty()) << step.arguments.join(u' ').toStdString();
    }
}

QStringList words(const char* text)
{
    return QString::fromUtf8(text).split(u' ');
}

TEST(QuarryTree, CommandsSayWhatTheyDidAndTheTreeIsSo)
{
    const TemporaryHome home;
    runSteps(home.path(),
             {{words("list"), 0, u"No queries yet"_s},
              {words("add sourdough hydration"), 0, u"Added query \"sourdough hydration\" (%ID)"_s},
              {words("add-folder Kitchen"), 0, u"Added folder \"Kitchen\" (%ID)"_s},
              {words("add-folder Bread --folder Kitchen"), 0, u"Added folder \"Bread\""_s},
              {words("add bed --words exact --site g.example --url-regex gard[en]+ --folder Kitchen --title Bed"), 0,
               u"Added advanced query \"Bed\""_s},
              {{u"combine"_s, u"--text"_s, u"rye starter"_s, u"--text"_s, u"wheat"_s, u"--title"_s, u"Starters"_s},
               0,
               u"combined query"_s},
              {{u"move"_s, u"sourdough hydration"_s, u"--into"_s, u"bread"_s},
               0,
               u"Moved \"sourdough hydration\" into \"Bread\""_s},
              {{u"move"_s, u"Starters"_s, u"--top"_s, u"--position"_s, u"1"_s}, 0, u"to the top level"_s},
              {words("move Kitchen --into Bread"), 1, u"cannot be moved into itself"_s},
              {words("rename Kitchen Küche"), 0, u"Renamed \"Kitchen\" to \"Küche\""_s},
              {words("disable Küche"), 0, u"Paused 2 queries"_s},
              {words("enable Bed"), 0, u"Enabled 1 query"_s},
              {words("edit Bed --text raised --words any"), 0, u"Changed advanced query \"Bed\""_s},
              {words("add any --words any --folder Bread"), 0, u"Added query \"any\""_s},
              {words("remove any"), 0, u"Removed query \"any\""_s},
              {words("remove Küche"), 1, u"is not empty"_s}});
    EXPECT_EQ(withoutIds(runQuarry(home.path(), {u"list"_s}).out),
              QStringLiteral(R"(UNREAD RESULTS  LAST UPDATE       ID        QUERY
     0       0  never             %ID  Starters
     0       0                    %ID  Küche/
     0       0                    %ID    Bread/
     0       0  never             %ID      sourdough hydration (paused)
     0       0  never             %ID    Bed
3 queries, 2 folders: 0 results, 0 unread
)"));
    const QJsonObject bed = runQuarry(home.path(), words("show Bed --json")).json();
    EXPECT_EQ(bed[u"query"_s].toString(), u"raised"_s);
    EXPECT_EQ(bed[u"words"_s].toString(), u"any"_s);
    EXPECT_EQ(bed[u"site"_s].toString(), u"g.example"_s);
    EXPECT_EQ(bed[u"urlExpression"_s].toString(), u"gard[en]+"_s);
    EXPECT_EQ(runQuarry(home.path(), words("show Starters --json")).json()[u"combined"_s].toArray(),
              (QJsonArray{u"rye starter"_s, u"wheat"_s}));

    runSteps(home.path(),
             {{words("remove Küche --recursive"), 0, u"Removed folder \"Küche\" with 2 queries and 0 results"_s},
              {words("remove Starters"), 0, u"Removed query \"Starters\" with 0 results"_s},
              {words("list"), 0, u"No queries yet"_s}});
}

TEST(QuarryTree, CombiningTakesTheWordsAndTheRestrictionsOfQueries)
{
    const TemporaryHome home;
    runSteps(home.path(), {{words("add-folder Bread"), 0, u""_s},
                           {words("add rye --words exact --site b.example --folder Bread"), 0, u""_s},
                           {words("add wheat --words exact --site b.example --folder Bread"), 0, u""_s},
                           {words("add oats"), 0, u""_s},
                           {words("combine Bread --title Both --folder Bread"), 0, u"Added combined query \"Both\""_s},
                           {words("combine rye oats"), 2, u"restricted in different ways"_s},
                           {words("combine oats Both --text spelt --words in-page --title All"), 0, u"\"All\""_s},
                           {words("combine rye nothing"), 1, u"there is no query or folder \"nothing\""_s},
                           {words("edit All --text a --text b --site x.example"), 0, u"\"All\""_s},
                           {words("edit rye --text a --text b"), 2, u"no combined query; give one --text"_s}});
    const struct {
        QString title, words, site;
        QJsonArray texts;
    } expected[] = {{u"Both"_s, u"exact"_s, u"b.example"_s, {u"rye"_s, u"wheat"_s}},
                    {u"All"_s, u"in-page"_s, u"x.example"_s, {u"a"_s, u"b"_s}}};
    for (const auto& each : expected) {
        const QJsonObject query = runQuarry(home.path(), {u"show"_s, each.title, u"--json"_s}).json();
        EXPECT_EQ(query[u"words"_s].toString(), each.words);
        EXPECT_EQ(query[u"site"_s].toString(), each.site);
        EXPECT_EQ(query[u"combined"_s].toArray(), each.texts);
    }
}

TEST(QuarryTree, AQueryIsNamedByTitleOrByTheBeginningOfItsId)
{
    const TemporaryHome home;
    for (const QString& title : {u"same"_s, u"same"_s, u"Other"_s})
        ASSERT_EQ(runQuarry(home.path(), {u"add"_s, title}).status, 0);
    const QJsonArray queries = runQuarry(home.path(), {u"list"_s, u"--json"_s}).json()[u"queries"_s].toArray();
    ASSERT_EQ(queries.size(), 3);
    const QString id = queries[1].toObject()[u"id"_s].toString();

    const Ran ambiguous = runQuarry(home.path(), {u"show"_s, u"same"_s});
    EXPECT_EQ(ambiguous.status, 1);
    EXPECT_TRUE(ambiguous.err.contains(queries[0].toObject()[u"id"_s].toString()) && ambiguous.err.contains(id));
    for (const QString& name : {id, id.left(10), id.left(10).toLower()})
        EXPECT_EQ(runQuarry(home.path(), {u"show"_s, name, u"--json"_s}).json()[u"id"_s].toString(), id);
    EXPECT_EQ(runQuarry(home.path(), {u"show"_s, u"other"_s, u"--json"_s}).json()[u"title"_s].toString(), u"Other"_s);
    EXPECT_EQ(runQuarry(home.path(), {u"show"_s, id.left(3)}).status, 1);

    // A title that is the beginning of another query's ID could mean either.
    ASSERT_EQ(runQuarry(home.path(), {u"add"_s, id.left(8)}).status, 0);
    EXPECT_EQ(runQuarry(home.path(), {u"show"_s, id.left(8)}).status, 1);
}

TEST(QuarryTree, TenAddingAtOnceLoseNothing)
{
    const TemporaryHome home;
    std::vector<std::unique_ptr<QuarryProcess>> adding;
    for (int i = 0; i < 10; ++i)
        adding.push_back(
            std::make_unique<QuarryProcess>(home.path(), QStringList{u"add"_s, QStringLiteral("query %1").arg(i)}));
    for (const auto& process : adding)
        EXPECT_EQ(process->wait().status, 0);
    EXPECT_EQ(runQuarry(home.path(), {u"list"_s, u"--json"_s}).json()[u"queries"_s].toArray().size(), 10);
}

} // namespace
} // namespace quarry::test
