#pragma once

#include "database/QueryDatabaseEngine.h"
#include "platform/EventTimers.h"
#include "session/TreeCounts.h"
#include "session/TreeEdit.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

namespace quarry {

/// The database as a program with a window lives with it: a tree that follows the file when other programs rewrite it,
/// and edits that show at once and are in the file within seconds.
///
/// Everything slow happens on other threads: loading, saving and looking at the file on one, large edits, which must
/// not wait for those, on another. Every function here is for the main thread and returns at once. An edit is kept
/// until it was saved, and applied again to every tree that comes from the file before that. Destroying the object
/// waits for what is being written and drops what is not: save() first.
class LiveTree final {
public:
    struct Parts {
        HomeFolder home;
        Clock& clock;
        Pauser& pauser;
        FileStore& files;
        NotificationCenter& notifications;
        EventTimers& timers; ///< Of the main thread; must outlive the object.
    };

    enum class Safety {
        Loading, ///< The file is being read for the first time.
        Safe,    ///< Every edit is in the file.
        Pending, ///< Some are not yet, but will be.
        Failed,  ///< They could not be written; tried again from time to time and with the next edit.
    };

    /// Called on the main thread.
    class Listener {
    public:
        virtual ~Listener() = default;
        /// Another tree with other nodes took the place of the old one: look everything up again by its UUID.
        virtual void treeReplaced() = 0;
        /// Results or definitions of these nodes changed; with `structure`, nodes came, went or moved as well.
        virtual void treeEdited(const QStringList& queries, bool structure) = 0;
        virtual void safetyChanged(Safety safety, const QString& reason) = 0;
    };

    LiveTree(Parts parts, Listener& listener);
    ~LiveTree();
    LiveTree(const LiveTree&) = delete;
    LiveTree& operator=(const LiveTree&) = delete;

    /// Begins to load; the listener hears when the tree is there.
    void start();
    /// An empty folder until the file is loaded.
    [[nodiscard]] QueryCorePtr root() const;
    [[nodiscard]] QueryCorePtr node(const QString& uuid) const;
    [[nodiscard]] const TreeCounts& counts() const;
    [[nodiscard]] Safety safety() const;
    /// Why the file could not be read or written; empty when it could.
    [[nodiscard]] QString fault() const;
    /// The file makes no sense, and an empty tree is shown. It is not written over until the user says so, or puts
    /// another file in its place; safetyChanged() tells when this changes.
    [[nodiscard]] bool isDamaged() const;
    /// Where a file that made no sense was copied to; empty when there was none.
    [[nodiscard]] QString damagedCopy() const;
    /// The user gave the damaged file up: an empty database takes its place. The copy stays.
    void replaceDamaged();

    /// Shows at once, a large one when it has been made on its thread, and is saved within seconds. Edits count
    /// in the order of these calls all the same. Ignored while the file is being loaded for the first time or is
    /// damaged.
    void edit(const TreeEdit& edit);
    /// Lets go of an edit that nobody needs any more, on another thread: it may hold a million keys.
    void retire(TreeEdit edit);
    /// Looks at the file now instead of within a second: another program said that it wrote it.
    void checkFile();
    /// Saves now what is pending, then calls back: within the call when nothing is. False: some of the edits that were
    /// made before the call could not be saved, fault() says why.
    void save(std::function<void(bool isSaved)> done);

private:
    struct State;
    std::shared_ptr<State> _state;
};

} // namespace quarry
