// The tree, made and changed by real commands.

#include "QuarryRig.h"

#include <QJsonArray>
#include <QRegularExpression>

using namespace Qt::Literals::StringLiterals;

namespace quarry::test {
namespace {

QString withoutIds(QString text)
{
    static const QRegularExpression ids(QStringLiteral("[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}|[0-9A-F]{8}"));
    return text.replace(ids, QStringLiteral("%ID"));
}

class QuarryTree : public QuarryTest {
protected:
    struct Step {
        const char* command;
        int status;
        QString said; ///< In the output when it is done, among the complaints otherwise; %ID stands for an ID.
    };

    void runSteps(const std::vector<Step>& steps) const
    {
        for (const Step& step : steps) {
            const Ran ran = run(step.command);
            EXPECT_EQ(ran.status, step.status) << step.command << '\n' << ran.err.toStdString();
            EXPECT_TRUE(withoutIds(step.status == 0 ? ran.out : ran.err).contains(step.said))
                << step.command << '\n'
                << ran.out.toStdString() << ran.err.toStdString();
            EXPECT_TRUE((step.status == 0 ? ran.err : ran.out).isEmpty()) << step.command;
        }
    }
};

TEST_F(QuarryTree, CommandsSayWhatTheyDidAndTheTreeIsSo)
{
    runSteps({{"list", 0, u"No queries yet"_s},
              {"add sourdough hydration", 0, u"Added query \"sourdough hydration\" (%ID)"_s},
              {"add-folder Kitchen", 0, u"Added folder \"Kitchen\" (%ID)"_s},
              {"add-folder Bread --folder Kitchen", 0, u"Added folder \"Bread\""_s},
              {"add bed --words exact --site g.example --url-regex gard[en]+ --folder Kitchen --title Bed", 0,
               u"Added advanced query \"Bed\""_s},
              {R"(combine --text "rye starter" --text wheat --title Starters)", 0, u"combined query"_s},
              {R"(move "sourdough hydration" --into bread)", 0, u"Moved \"sourdough hydration\" into \"Bread\""_s},
              {"move Starters --top --position 1", 0, u"to the top level"_s},
              {"move Kitchen --into Bread", 1, u"cannot be moved into itself"_s},
              {"rename Kitchen Küche", 0, u"Renamed \"Kitchen\" to \"Küche\""_s},
              {"disable Küche", 0, u"Paused 2 queries"_s},
              {"enable Bed", 0, u"Enabled 1 query"_s},
              {"edit Bed --text raised --words any", 0, u"Changed advanced query \"Bed\""_s},
              {"add any --words any --folder Bread", 0, u"Added query \"any\""_s},
              {"remove any", 0, u"Removed query \"any\""_s},
              {"remove Küche", 1, u"is not empty"_s}});
    EXPECT_EQ(withoutIds(run("list").out), QStringLiteral(R"(UNREAD RESULTS  LAST UPDATE       ID        QUERY
     0       0  never             %ID  Starters
     0       0                    %ID  Küche/
     0       0                    %ID    Bread/
     0       0  never             %ID      sourdough hydration (paused)
     0       0  never             %ID    Bed
3 queries, 2 folders: 0 results, 0 unread
)"));
    const QJsonObject bed = run("show Bed --json").json();
    EXPECT_EQ(bed[u"query"_s].toString(), u"raised"_s);
    EXPECT_EQ(bed[u"words"_s].toString(), u"any"_s);
    EXPECT_EQ(bed[u"site"_s].toString(), u"g.example"_s);
    EXPECT_EQ(bed[u"urlExpression"_s].toString(), u"gard[en]+"_s);
    EXPECT_EQ(run("show Starters --json").json()[u"combined"_s].toArray(), (QJsonArray{u"rye starter"_s, u"wheat"_s}));

    runSteps({{"remove Küche --recursive", 0, u"Removed folder \"Küche\" with 2 queries and 0 results"_s},
              {"remove Starters", 0, u"Removed query \"Starters\" with 0 results"_s},
              {"list", 0, u"No queries yet"_s}});
}

TEST_F(QuarryTree, CombiningTakesTheWordsAndTheRestrictionsOfQueries)
{
    runSteps({{"add-folder Bread", 0, u""_s},
              {"add rye --words exact --site b.example --folder Bread", 0, u""_s},
              {"add wheat --words exact --site b.example --folder Bread", 0, u""_s},
              {"add oats", 0, u""_s},
              {"combine Bread --title Both --folder Bread", 0, u"Added combined query \"Both\""_s},
              {"combine rye oats", 2, u"restricted in different ways"_s},
              {"combine oats Both --text spelt --words in-page --title All", 0, u"\"All\""_s},
              {"combine rye nothing", 1, u"there is no query or folder \"nothing\""_s},
              {"edit All --text a --text b --site x.example", 0, u"\"All\""_s},
              {"edit rye --text a --text b", 2, u"no combined query; give one --text"_s}});
    const struct {
        QString title, words, site;
        QJsonArray texts;
    } expected[] = {{u"Both"_s, u"exact"_s, u"b.example"_s, {u"rye"_s, u"wheat"_s}},
                    {u"All"_s, u"in-page"_s, u"x.example"_s, {u"a"_s, u"b"_s}}};
    for (const auto& each : expected) {
        const QJsonObject query = run({u"show"_s, each.title, u"--json"_s}).json();
        EXPECT_EQ(query[u"words"_s].toString(), each.words);
        EXPECT_EQ(query[u"site"_s].toString(), each.site);
        EXPECT_EQ(query[u"combined"_s].toArray(), each.texts);
    }
}

TEST_F(QuarryTree, AQueryIsNamedByTitleOrByTheBeginningOfItsId)
{
    for (const QString& title : {u"same"_s, u"same"_s, u"Other"_s})
        ASSERT_EQ(run({u"add"_s, title}).status, 0);
    const QJsonArray queries = run("list --json").json()[u"queries"_s].toArray();
    ASSERT_EQ(queries.size(), 3);
    const QString id = queries[1].toObject()[u"id"_s].toString();

    const Ran ambiguous = run("show same");
    EXPECT_EQ(ambiguous.status, 1);
    EXPECT_TRUE(ambiguous.err.contains(queries[0].toObject()[u"id"_s].toString()) && ambiguous.err.contains(id));
    for (const QString& name : {id, id.left(10), id.left(10).toLower()})
        EXPECT_EQ(run({u"show"_s, name, u"--json"_s}).json()[u"id"_s].toString(), id);
    EXPECT_EQ(run("show other --json").json()[u"title"_s].toString(), u"Other"_s);
    EXPECT_EQ(run({u"show"_s, id.left(3)}).status, 1);

    // A title that is the beginning of another query's ID could mean either.
    ASSERT_EQ(run({u"add"_s, id.left(8)}).status, 0);
    EXPECT_EQ(run({u"show"_s, id.left(8)}).status, 1);
}

TEST_F(QuarryTree, TenAddingAtOnceLoseNothing)
{
    std::vector<std::unique_ptr<QuarryProcess>> adding;
    for (int i = 0; i < 10; ++i)
        adding.push_back(
            std::make_unique<QuarryProcess>(home.path(), QStringList{u"add"_s, QStringLiteral("query %1").arg(i)}));
    for (const auto& process : adding)
        EXPECT_EQ(process->wait().status, 0);
    EXPECT_EQ(run("list --json").json()[u"queries"_s].toArray().size(), 10);
}

} // namespace
} // namespace quarry::test
