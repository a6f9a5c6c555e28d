// Results, listed and changed by real commands over a database that another program wrote.

#include "QuarryRig.h"

#include <QJsonArray>

using namespace Qt::Literals::StringLiterals;

namespace quarry::test {
namespace {

class QuarryResults : public QuarryTest {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(QFile::copy(QStringLiteral(QUARRY_TEST_DATA "/golden/db.qsdata"), home->databaseFile()));
    }
    /// The titles of what `quarry results` lists.
    [[nodiscard]] QStringList titles(const QStringList& arguments) const
    {
        QStringList titles;
        for (const QJsonValue result :
             run(QStringList{u"results"_s, u"--json"_s} + arguments).json()[u"results"_s].toArray())
            titles.append(result.toObject()[u"title"_s].toString());
        return titles;
    }

    const QString _trains = QStringLiteral("02020202");
    const QString _cafe = QStringLiteral("Café — 日本語 🚂👩‍💻");
};

TEST_F(QuarryResults, ADatabaseOfAnotherProgramIsListedExactly)
{
    EXPECT_EQ(run("list").out, QStringLiteral(R"(UNREAD RESULTS  LAST UPDATE       ID        QUERY
     3       4  2014-01-25 12:27  02020202  Trains & "buses" <b>
     0       0  never             03030303  検索 🔎 C (paused)
     0       0  never             04040404  alpha beta
     1       1                    05050505  Dossier été/
     1       1                    06060606    深い 📁/
     1       1  never             07070707      inner
     0       0  never             08080808    second in the folder
     0       0                    09090909    Empty, no list of children/
     0       0  never             0A0A0A0A  (no name)
     0       0                    0B0B0B0B  (no name)/
6 queries, 4 folders: 5 results, 4 unread, 1 hidden
)"));
    EXPECT_EQ(run({u"results"_s, _trains, u"--limit"_s, u"2"_s}).out, QStringLiteral(R"(   1 * Plain ASCII title
       https://user:pw@example.org:8443/p;x=1?y#z
       Summary
       52525252  Yahoo  found 2000-12-30 23:59
   2   Café — 日本語 🚂👩‍💻
       http://www.example.org/%E6%97%A5?q=a+b&c=%26#frag
       Tab here new line, quote " backslash \ é ﻿ end
       51515151  Google  found 2014-01-25 12:26  new, rated 5
2 of 4 results
)"));
}

TEST_F(QuarryResults, AreSortedFilteredAndSearched)
{
    const QString ascii = QStringLiteral("Plain ASCII title");
    const struct {
        QStringList arguments;
        QStringList titles;
    } cases[] = {
        {{_trains}, {ascii, _cafe, u"é"_s, u"only a title"_s}},
        {{_trains, u"--sort"_s, u"newest"_s}, {_cafe, u"é"_s, ascii, u"only a title"_s}},
        {{_trains, u"--sort"_s, u"rating"_s, u"--limit"_s, u"1"_s}, {_cafe}},
        {{_trains, u"--unread"_s}, {ascii, u"é"_s, u"only a title"_s}},
        {{_trains, u"--new"_s}, {_cafe}},
        {{_trains, u"--search"_s, u"CAFE"_s}, {_cafe}},
        {{_trains, u"--search"_s, u"EXAMPLE.ORG:8443"_s}, {ascii}},
        {{_trains, u"--search"_s, u"no such words"_s}, {}},
        {{u"Dossier été"_s}, {u"Inner result"_s}},
        {{u"--unread"_s, u"--limit"_s, u"2"_s, u"--sort"_s, u"title"_s}, {u"Inner result"_s, ascii}},
    };
    for (const auto& each : cases)
        EXPECT_EQ(titles(each.arguments), each.titles) << each.arguments.join(u' ').toStdString();
    EXPECT_EQ(titles({_trains, u"--hidden"_s}).size(), 1);
}

TEST_F(QuarryResults, AreMarkedHiddenRatedAndExcluded)
{
    const auto said = [this](const QStringList& arguments) { return run(arguments).out.trimmed(); };
    const QString of = QStringLiteral(" of \"Trains & \"buses\" <b>\"");
    EXPECT_EQ(said({u"read"_s, _trains, u"1"_s, u"52525252"_s}), u"Marked 1 result"_s + of + u" as read"_s);
    EXPECT_EQ(titles({_trains, u"--unread"_s}), (QStringList{u"é"_s, u"only a title"_s}));
    EXPECT_EQ(said({u"unread"_s, _trains, u"https://user:pw@example.org:8443/p;x=1?y#z"_s}),
              u"Marked 1 result"_s + of + u" as unread"_s);
    EXPECT_EQ(said({u"read"_s, u"--all"_s}), u"Marked 4 results as read"_s);
    EXPECT_EQ(said({u"read"_s, u"--all"_s}), u"Marked 0 results as read"_s);
    EXPECT_TRUE(titles({u"--unread"_s}).isEmpty());

    EXPECT_EQ(said({u"rate"_s, _trains, u"1"_s, u"--stars"_s, u"4"_s}), u"Rated 4: 1 result"_s + of);
    EXPECT_EQ(
        run({u"results"_s, _trains, u"--json"_s}).json()[u"results"_s].toArray()[0].toObject()[u"rating"_s].toInt(), 4);
    EXPECT_EQ(said({u"hide"_s, _trains, u"1"_s}), u"Hid 1 result"_s + of);
    EXPECT_EQ(titles({_trains, u"--hidden"_s}).size(), 2);
    EXPECT_EQ(said({u"unhide"_s, _trains, u"52525252"_s}), u"Shows again 1 result"_s + of);
    EXPECT_EQ(titles({_trains, u"--hidden"_s}).size(), 1);

    EXPECT_TRUE(said({u"exclude"_s, _trains, u"www.example.org"_s}).startsWith(u"Excluded www.example.org from "_s));
    EXPECT_FALSE(titles({_trains}).contains(_cafe));
    EXPECT_TRUE(
        run({u"show"_s, _trains, u"--json"_s}).json()[u"excludedHosts"_s].toArray().contains(u"www.example.org"_s));
    EXPECT_EQ(run({u"exclude"_s, _trains, u"www.example.org"_s, u"--undo"_s}).status, 0);
    EXPECT_FALSE(
        run({u"show"_s, _trains, u"--json"_s}).json()[u"excludedHosts"_s].toArray().contains(u"www.example.org"_s));
}

TEST_F(QuarryResults, AWrongNameChangesNothing)
{
    const QByteArray before = contentOf(home->databaseFile());
    const struct {
        QStringList arguments;
        int status;
        QString complaint;
    } cases[] = {
        {{u"read"_s, _trains, u"5"_s}, 1, u"there is no result \"5\" among the 4"_s},
        {{u"read"_s, _trains, u"1"_s, u"0"_s}, 1, u"there is no result \"0\""_s},
        {{u"hide"_s, _trains, u"DEADBEEF"_s}, 1, u"there is no result \"DEADBEEF\""_s},
        {{u"unhide"_s, _trains, u"52525252"_s}, 1, u"there is no result"_s},
        {{u"read"_s, u"Dossier été"_s, u"1"_s}, 2, u"is a folder"_s},
        {{u"read"_s, _trains}, 2, u"name a query and its results"_s},
        {{u"rate"_s, _trains, u"1"_s, u"--stars"_s, u"6"_s}, 2, u"from 0 to 5"_s},
        {{u"rate"_s, _trains, u"1"_s}, 2, u"--stars is missing"_s},
        {{u"exclude"_s, _trains, u"never.example"_s, u"--undo"_s}, 1, u"is not excluded"_s},
        {{u"exclude"_s, _trains, u"www.example.org"_s, u"http://[bad"_s}, 1, u"neither a host nor a result"_s},
        {{u"results"_s, _trains, u"--sort"_s, u"sideways"_s}, 2, u"must be one of rank, newest"_s},
    };
    for (const auto& each : cases) {
        const Ran ran = run(each.arguments);
        EXPECT_EQ(ran.status, each.status) << each.arguments.join(u' ').toStdString();
        EXPECT_TRUE(ran.err.contains(each.complaint)) << ran.err.toStdString();
    }
    EXPECT_EQ(contentOf(home->databaseFile()), before);
}

} // namespace
} // namespace quarry::test
