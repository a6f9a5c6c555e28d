// A process for the tests to start: rewrites the database of a home folder without end and says each state it has
// saved.

#include "database/QueryDatabaseEngine.h"
#include "support/RecordingPauser.h"
#include "support/SettableClock.h"

#include <QFile>

#include <cstdio>

using namespace quarry;
using namespace quarry::test;

/// State n: one query named n, with results that all say so and make the file some hundred kilobytes large.
static void makeState(QueryDatabaseEngine& database, int number)
{
    const QString text = QString::number(number);
    const QueryCorePtr node = database.queries() && !database.queries()->isEmpty()
                                  ? database.queries()->first()
                                  : database.addQuery(QStringLiteral("query"), false);
    node->setTitle(text);
    ResultList results;
    for (int i = 0; i < 1000; ++i)
        results.append(ResultRecord().withTitle(text).withTextFromPage(QString(100, u'x') + QString::number(i)));
    (void)node->replaceResultsIfUnchanged(node->snapshot().generation, results, Date(number));
}

int main(int argc, char** argv)
{
    if (argc != 2)
        return 2;
    const HomeFolder home(QFile::decodeName(argv[1]));
    SettableClock clock;
    RecordingPauser pauser;
    DiskFileStore files;
    NotificationCenter notifications;
    QueryDatabaseEngine engine({home, clock, pauser, files, notifications, nullptr, {}},
                               QueryDatabaseEngine::AtEnd::Discard);
    for (int number = 1;; ++number) {
        const QString error = engine.edit([&](QueryDatabaseEngine& database) {
            makeState(database, number);
            return QString();
        });
        if (!error.isEmpty())
            return 1;
        std::printf("%d\n", number);
        std::fflush(stdout);
    }
}
