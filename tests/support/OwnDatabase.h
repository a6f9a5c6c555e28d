#pragma once

#include "database/QueryDatabaseEngine.h"
#include "support/FailingFileStore.h"
#include "support/RecordingPauser.h"
#include "support/SettableClock.h"
#include "support/TemporaryHome.h"

#include <gtest/gtest.h>

namespace quarry::test {

/// A home folder with a database in it, read and edited as any program of the product does.
struct OwnDatabase {
    using Engine = QueryDatabaseEngine;

    /// What is in the file now.
    [[nodiscard]] std::unique_ptr<Engine> openDatabase()
    {
        return std::make_unique<Engine>(Engine::Parts{home, clock, pauser, files, notifications, nullptr, {}},
                                        Engine::AtEnd::Discard);
    }
    /// As another program changes the file.
    void edit(const std::function<void(Engine&)>& change)
    {
        const QString error = openDatabase()->edit([&change](Engine& database) {
            change(database);
            return QString();
        });
        EXPECT_EQ(error.toStdString(), "");
    }

    TemporaryHome home;
    SettableClock clock;
    RecordingPauser pauser;
    FailingFileStore files;
    NotificationCenter notifications;
};

} // namespace quarry::test
