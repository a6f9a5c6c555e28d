#pragma once

#include "database/TreeNews.h"
#include "engines/UpdateStarter.h"
#include "model/QueryCore.h"
#include "platform/Clock.h"
#include "platform/FileStore.h"
#include "platform/HomeFolder.h"
#include "platform/NotificationCenter.h"
#include "platform/Pauser.h"

#include <QList>
#include <QString>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>

namespace quarry {

/// The single owner of the query tree: loads it from the database file, reloads it when another process rewrote
/// the file, saves it, starts and counts updates. One a process, but tests make as many as they like. Thread-safe.
///
/// A reload replaces every node: a node held from before belongs to the old tree from then on. Nodes are looked up
/// again (queryForUUID) inside an edit. No operation that may touch the file is called while the tree lock is held.
class QueryDatabaseEngine final {
public:
    /// What an engine works with. References must outlive it.
    struct Parts {
        HomeFolder home;
        Clock& clock;
        Pauser& pauser;
        FileStore& files;
        NotificationCenter& notifications;
        UpdateStarter* updates = nullptr; ///< None in programs that never update.
        /// The positive reply to a pending request to terminate; may be empty.
        std::function<void()> terminateReply;
    };

    enum class AtEnd {
        Discard, ///< Programs that only read: destroying the engine writes nothing.
        Save,    ///< Programs that change the tree: destroying the engine forces a save.
    };

    QueryDatabaseEngine(Parts parts, AtEnd atEnd);
    ~QueryDatabaseEngine();
    QueryDatabaseEngine(const QueryDatabaseEngine&) = delete;
    QueryDatabaseEngine& operator=(const QueryDatabaseEngine&) = delete;

    /// The process-wide engine, made by the program's main function. Only apps/ reaches for it.
    [[nodiscard]] static QueryDatabaseEngine& defaultDatabase();
    static void setDefaultDatabase(std::unique_ptr<QueryDatabaseEngine> engine);

    // --- File ---------------------------------------------------------------------------------------------------
    /// Dropped while a save is being written, and, unless forced, within 60 seconds of the last; within an edit it is
    /// left to the edit's own; the empty tree that stands for a damaged file is never saved so. Takes the writer lock.
    /// Returns false only when it was tried and failed, which is also so when another program changed the file since
    /// it was last read here; lastError() then says why.
    bool saveDatabase(bool force);
    /// Reads the file again when its modification date is another than the one last seen. Does nothing within an edit.
    void dbSynchCheck();
    /// One line for a person about the last failed load or save; empty when it went well.
    [[nodiscard]] QString lastError() const;
    /// The file that stands there did not decode, and an empty tree took its place.
    [[nodiscard]] bool isFileDamaged() const;
    /// Where a file that did not decode was copied to; empty when there was none.
    [[nodiscard]] QString damagedCopy() const;

    /// One change to the database that nobody else's change can get lost in: takes the writer lock, reloads if the
    /// file changed, applies the change, saves (forced), lets go. `change` returns an empty text to go on, or the
    /// reason for which nothing is to be saved; it must then have changed nothing. It looks its nodes up itself, since
    /// the tree may be a new one, and is applied once more when a program that does not take the lock comes between.
    /// Answers that reason, or why it could not be saved, in which case the tree is again what the file holds;
    /// empty: done.
    using Change = std::function<QString(QueryDatabaseEngine&)>;
    [[nodiscard]] QString edit(const Change& change);

    // --- Tree ---------------------------------------------------------------------------------------------------
    [[nodiscard]] QueryCorePtr rootQuery();
    /// The tree as it is here, without a look at the file. Takes a moment only.
    [[nodiscard]] QueryCorePtr currentRoot() const;
    QueryCorePtr addQuery(const QString& text);
    QueryCorePtr addQuery(const QString& text, bool isFolder);
    QueryCorePtr addAdvancedQuery(const QString& query, qint64 wordsResctriction, const QString& siteRestriction,
                                  const QString& urlRegularExpression);
    QueryCorePtr addAdvancedCombinedQuery(const QStringList& queries, qint64 wordsResctriction,
                                          const QString& siteRestriction);
    [[nodiscard]] QueryCorePtr searchOrCreateQuery(const QString& text);
    [[nodiscard]] std::optional<QList<QueryCorePtr>> queries() const;
    [[nodiscard]] QueryCorePtr queryForUUID(const QString& uuid) const;
    [[nodiscard]] std::size_t numberOfQueries() const;
    [[nodiscard]] qint64 numberTotalOfQueries(const QueryCorePtr& node) const;
    [[nodiscard]] qint64 numberTotalOfEnabledQueries(const QueryCorePtr& node) const;
    [[nodiscard]] std::optional<ResultList> resultsInDatabase();
    [[nodiscard]] ResultList searchResultsForQuery(const QueryCorePtr& node);
    void removeQuery(const QueryCorePtr& node);
    void toggleQueryIsEnable(const QueryCorePtr& node);
    void moveQuery(const QueryCorePtr& node, const QueryCorePtr& asChildOf, std::size_t index);
    void markItemAsRead(const ResultRecord& item, const QueryCorePtr& query);
    [[nodiscard]] bool unreadResults();
    [[nodiscard]] QList<QuerySummary> queriesWithNewResults();
    [[nodiscard]] QList<QuerySummary> queriesWithNewResults(const QueryCorePtr& node);

    // --- Updates ------------------------------------------------------------------------------------------------
    void updateQuery(const QueryCorePtr& node);
    /// Starts the update of every enabled query, top-level children half a second apart. Blocks meanwhile.
    void updateAllQueries();
    [[nodiscard]] qint64 numberOfUpdatesRunning() const;
    void stopAllThreads();
    [[nodiscard]] bool isUpdating() const;
    [[nodiscard]] bool isBuildingCache() const;
    /// What happens on "DBInternalUpdate".
    void updateNotification();

private:
    struct Impl;
    /// Reloads if the file changed, then applies. Answers the reason for which nothing is to be saved.
    QString applyToCurrentTree(const Change& change);
    QueryCorePtr appendToRoot(const QueryCorePtr& node);

    std::unique_ptr<Impl> _impl;
};

} // namespace quarry
