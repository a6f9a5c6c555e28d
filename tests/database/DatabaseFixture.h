#pragma once

#include "database/QueryDatabaseEngine.h"
#include "platform/SystemLog.h"
#include "support/FailingFileStore.h"
#include "support/RecordingPauser.h"
#include "support/SettableClock.h"
#include "support/TemporaryHome.h"

#include <gtest/gtest.h>

#include <vector>

namespace quarry::test {

/// Notes what is to be updated, and updates nothing.
class RecordingUpdates final : public UpdateStarter {
public:
    void update(const QueryCorePtr& node) override { titles.append(QStringLiteral("one ") + node->title()); }
    void updateAll(const QueryCorePtr& node) override { titles.append(QStringLiteral("all ") + node->title()); }
    QStringList titles;
};

/// A home folder and everything an engine needs.
class DatabaseFixture : public ::testing::Test {
public:
    ~DatabaseFixture() override { setSystemLogSink({}); }

protected:
    using Engine = QueryDatabaseEngine;

    DatabaseFixture()
    {
        setSystemLogSink([this](const QString& line) { log.append(line); });
    }

    Engine::Parts parts()
    {
        return {home, clock, pauser, files, notifications, &updates, [this] { ++terminateReplies; }};
    }
    /// Another program of the product.
    struct Other {
        explicit Other(DatabaseFixture& of)
            : engine({of.home, of.clock, of.pauser, disk, center, nullptr, {}}, Engine::AtEnd::Discard)
        {
        }
        DiskFileStore disk;
        NotificationCenter center;
        Engine engine;
    };
    /// Its edit, which adds one query to the root.
    QString addElsewhere(const QString& text)
    {
        Other other(*this);
        return add(other.engine, text);
    }
    static QString add(Engine& engine, const QString& text)
    {
        return engine.edit(
            [&](Engine& database) { return database.addQuery(text, false) ? QString() : QStringLiteral("no text"); });
    }
    /// The titles of the top level, as the file holds them.
    QStringList titlesInFile()
    {
        Other other(*this);
        return titlesOf(other.engine);
    }
    static QStringList titlesOf(Engine& engine)
    {
        QStringList titles;
        for (const QueryCorePtr& child : engine.queries().value_or(QList<QueryCorePtr>()))
            titles.append(child->title());
        return titles;
    }
    static void setResults(const QueryCorePtr& node, const ResultList& results)
    {
        EXPECT_TRUE(node->replaceResultsIfUnchanged(node->snapshot().generation, results, Date(1.0)));
    }
    QByteArray bytesInFile() const { return contentOf(home->databaseFile()); }
    Date dateOfFile() const { return files.stamp(home->databaseFile())->modificationDate(); }

    TemporaryHome home;
    SettableClock clock;
    RecordingPauser pauser;
    FailingFileStore files;
    NotificationCenter notifications;
    RecordingUpdates updates;
    int terminateReplies = 0;
    QStringList log;
};

} // namespace quarry::test
