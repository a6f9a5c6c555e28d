#pragma once

#include "archive/StringTable.h"
#include "model/QueryCore.h"
#include "platform/DistributedNotifications.h"
#include "platform/QtEventTimers.h"
#include "platform/Workspace.h"
#include "support/QtPrinting.h"
#include "support/RecordingPauser.h"
#include "support/Screen.h"
#include "support/SettableClock.h"
#include "support/TemporaryHome.h"
#include "window/MainWindow.h"
#include "window/TreePane.h"

#include <QDialog>
#include <QTest>

#include <gtest/gtest.h>

// The whole window over a home folder of its own, as a user has it; only the desktop around it is made up.
namespace quarry::test {

/// The texts as users get them, in the language ("en", "fr", "de").
inline StringTable windowTexts(const QString& language = QStringLiteral("en"))
{
    return StringTable(QStringLiteral(QUARRY_TEST_DATA "/../../resources"), {language}, QStringLiteral("Window"));
}

inline ResultRecord resultAt(const QString& address)
{
    return ResultRecord().withTitle(address).withLinkUuid(address).withVisible(true).withUrl(*Url::fromText(address));
}

class QuietWorkspace final : public Workspace {
public:
    bool openBundle(const QString&) override { return true; }
    bool openFile(const QString&, const QString&) override { return true; }
    bool openAddress(const QString&) override { return true; }
    bool launch(const QString&, const QStringList&) override { return true; }
    bool moveToTrash(const QString&) override { return true; }
};

class QuietDistributed final : public DistributedNotifications {
public:
    void post(const QString&, const UserInfo&) override {}
    void addObserver(const QString&, Observer) override {}
};

/// Keeps how a widget looks, with QUARRY_SCREENSHOTS set to a folder.
inline void keepPicture(QWidget* widget, const QString& name)
{
    QCoreApplication::processEvents(); // Layouts are made anew from the event loop.
    if (const QString folder = qEnvironmentVariable("QUARRY_SCREENSHOTS"); !folder.isEmpty())
        widget->grab().save(QDir(folder).filePath(name + QStringLiteral(".png")));
}

class WindowRig {
public:
    /// Fills the database before the window opens.
    explicit WindowRig(const std::function<void(const QueryCorePtr& root)>& fill = {})
    {
        if (fill) {
            QueryDatabaseEngine engine({_home, _clock, _pauser, _files, _notifications, nullptr, {}},
                                       QueryDatabaseEngine::AtEnd::Discard);
            const QString error = engine.edit([&](QueryDatabaseEngine& database) {
                fill(database.currentRoot());
                return QString();
            });
            EXPECT_EQ(error, QString());
        }
        window = std::make_unique<MainWindow>(
            WindowParts{{_home, _clock, _pauser, _files, _notifications, _timers},
                        _workspace,
                        _distributed,
                        texts,
                        QString(),
                        [this](bool automatic, qint64 minutes) {
                            followed.append(QStringLiteral("%1 every %2")
                                                .arg(automatic ? QStringLiteral("on") : QStringLiteral("off"))
                                                .arg(minutes));
                        }});
        window->show();
        EXPECT_TRUE(happens([this] { return window->tree().safety() != LiveTree::Safety::Loading; }));
    }

    /// The sheet that is open, once there is one.
    [[nodiscard]] QDialog* sheet()
    {
        QDialog* open = nullptr;
        EXPECT_TRUE(happens([&] {
            const QList<QDialog*> dialogs = window->findChildren<QDialog*>();
            for (QDialog* const dialog : dialogs)
                open = dialog->isVisible() ? dialog : open;
            return open != nullptr;
        }));
        return open;
    }
    /// The node by its title, as a user looks for it.
    [[nodiscard]] QueryCorePtr node(const QString& title) { return find(window->tree().root(), title); }
    void select(const QString& title) { window->treePane().select(node(title)->UUID()); }
    void undo()
    {
        const QList<QAction*> all = window->findChildren<QAction*>();
        for (QAction* const action : all) {
            if (action->shortcut() == QKeySequence(QKeySequence::Undo))
                return action->trigger();
        }
        ADD_FAILURE() << "no undo";
    }
    /// What is in the file, once everything is safe there.
    [[nodiscard]] QueryCorePtr stored(const QString& title)
    {
        EXPECT_TRUE(window->tree().flush());
        _reader = std::make_unique<QueryDatabaseEngine>(
            QueryDatabaseEngine::Parts{_home, _clock, _pauser, _files, _notifications, nullptr, {}},
            QueryDatabaseEngine::AtEnd::Discard);
        return find(_reader->currentRoot(), title);
    }

    const StringTable texts = windowTexts();
    [[nodiscard]] const HomeFolder& home() const { return _home; }
    [[nodiscard]] FileStore& files() { return _files; }
    QStringList followed; ///< What the agent was told about the schedule.

private:
    static QueryCorePtr find(const QueryCorePtr& below, const QString& title)
    {
        const QList<QueryCorePtr> childs = below->childs().value_or(QList<QueryCorePtr>());
        for (const QueryCorePtr& child : childs) {
            if (child->title() == title)
                return child;
            if (const QueryCorePtr found = find(child, title))
                return found;
        }
        return nullptr;
    }

    TemporaryHome _home;
    SettableClock _clock;
    RecordingPauser _pauser;
    DiskFileStore _files;
    NotificationCenter _notifications;
    QtEventTimers _timers;
    QuietWorkspace _workspace;
    QuietDistributed _distributed;
    std::unique_ptr<QueryDatabaseEngine> _reader;

public:
    std::unique_ptr<MainWindow> window; ///< Last: it goes first.
};

} // namespace quarry::test
