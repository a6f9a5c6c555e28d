#pragma once

#include "model/QueryFields.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace quarry {

class QueryCore;
class ResultKeys;
using QueryCorePtr = std::shared_ptr<QueryCore>;

/// The four kinds of node. Told apart by flags in the archive; this is the one place that names them.
enum class QueryKind { Plain, Advanced, Combined, Folder };

/// What a tree needs of the program around it.
struct TreeServices {
    /// How findParentOfQuery finds a node by its UUID. Nodes that left the tree still call it, so it must neither
    /// keep the tree alive nor rely on it being there. The model does not hold the tree lock meanwhile.
    std::function<QueryCorePtr(const QString& uuid)> findByUuid;
    /// The folder that holds the page caches ("Caches"); node UUIDs name its sub-folders. Empty: nothing is deleted.
    QString cachesFolder;
};

/// One node of the query tree: a saved search with its results, or a folder of them.
///
/// Held by shared_ptr. A folder owns its children; the parent is a weak reference, cleared on detach. Every public
/// operation takes the tree lock (TreeLock.h) by itself, so single operations may be called from any thread; lists
/// come back as implicitly shared snapshots. Invalid input never throws: an initializer returns no node, a change
/// does nothing beyond what is said there, a look-up returns no node. Equality of nodes is identity.
///
/// Files are deleted after the tree lock is let go, on the same thread, and only below the caches folder of the
/// services that the node was given.
///
/// The operations stand by theme: QueryCore.cpp (making, snapshots), QueryDefinition.cpp, QueryTree.cpp,
/// QueryResults.cpp, QueryBulkChanges.cpp, QueryUpdateState.cpp.
class QueryCore final : public std::enable_shared_from_this<QueryCore> {
    struct Private {}; ///< Only the initializers below make nodes.

public:
    // --- Initializers -------------------------------------------------------------------------------------------
    /// A plain query with no words.
    [[nodiscard]] static QueryCorePtr init();
    /// A plain query. No node for an absent or empty text; blanks are stored as "+".
    [[nodiscard]] static QueryCorePtr initWithQuery(const std::optional<QString>& query);
    /// An advanced query. No node for an absent or empty text.
    [[nodiscard]] static QueryCorePtr initWithAdvancedQuery(const std::optional<QString>& query,
                                                            qint64 wordsResctriction, const QString& siteRestriction,
                                                            const std::optional<QString>& urlRegularExpression);
    /// A combined query. No node for an absent or empty list. The stored text is every non-empty element with one
    /// blank before it, so it begins with a blank.
    [[nodiscard]] static QueryCorePtr
    initWithAdvancedCombinedQuery(const QStringList& queries, qint64 wordsResctriction, const QString& siteRestriction);
    /// A folder with an optional name.
    [[nodiscard]] static QueryCorePtr initWithQueryFolder(const std::optional<QString>& name);
    /// A node read back from a file (QueryArchive.h): the fields as they are, the sort order 0, the unread count 0.
    /// No default exclusions: they are among the stored ones.
    [[nodiscard]] static QueryCorePtr fromArchive(QueryFields fields);
    /// The children of a node read back from a file. Their parents and key paths stay as they are. The caller sees
    /// to it that no node stands in two places or below itself.
    void setChildsFromArchive(QList<QueryCorePtr> childs);

    /// Hands the services to this node and everything below it; nodes added later get them from their folder.
    void setServices(const std::shared_ptr<const TreeServices>& services);

    QueryCore(Private, QueryFields fields, std::int32_t sortType, qint64 nbUnread);
    QueryCore(const QueryCore&) = delete;
    QueryCore& operator=(const QueryCore&) = delete;

    // --- Definition ---------------------------------------------------------------------------------------------
    [[nodiscard]] QueryKind kind() const;
    [[nodiscard]] QString query() const;                      ///< Blanks shown again; empty when absent.
    [[nodiscard]] std::optional<QString> storedQuery() const; ///< `_query` as stored.
    [[nodiscard]] QString queryAmpersandProtected() const;    ///< query() with every "&" as "_&&&&&_".
    [[nodiscard]] QString title() const;                      ///< The user's title, else query().
    [[nodiscard]] QString highlight() const;                  ///< The words to highlight, else query().
    void setQuery(const std::optional<QString>& query);
    void setTitle(const std::optional<QString>& title);
    void setHighlight(const std::optional<QString>& highlight);
    void setSearchString(const std::optional<QString>& searchString);
    void setMustHighlight(bool highlight);
    [[nodiscard]] bool isHighlightActive() const;
    void setEnabled(bool enabled);
    [[nodiscard]] bool isEnabled() const;
    void setCheckBlacklist(bool check);
    [[nodiscard]] bool isCheckingBlacklist() const;
    void setComputeChecksum(bool compute);
    [[nodiscard]] bool isComputingChecksum() const;
    [[nodiscard]] QString UUID() const;
    [[nodiscard]] std::optional<Date> date() const; ///< Time of the last update; the reference date: never.
    [[nodiscard]] bool isAdvancedQuery() const;
    [[nodiscard]] bool isCombinedQuery() const;
    [[nodiscard]] std::optional<QStringList> combinedQueries() const;
    [[nodiscard]] QString websiteRestriction() const;
    [[nodiscard]] QString urlRegularExpressions() const;
    [[nodiscard]] std::optional<qint64> wordsRestriction() const; ///< 1 when not advanced.
    [[nodiscard]] qint64 searchType() const;                      ///< The stored mode, 0 when absent.

    void changeWithQuery(const std::optional<QString>& query, qint64 wordsResctriction,
                         const std::optional<QString>& siteRestriction,
                         const std::optional<QString>& urlRegularExpression = QString());
    void changeWithCombinedQuery(const QStringList& queries, qint64 wordsResctriction,
                                 const std::optional<QString>& siteRestriction,
                                 const std::optional<QString>& urlRegularExpression = QString());

    // --- Tree ---------------------------------------------------------------------------------------------------
    [[nodiscard]] bool isQueryFolder() const;
    [[nodiscard]] bool isLeaf() const;
    /// A snapshot of the children; none for a leaf or a folder that never had a child.
    [[nodiscard]] std::optional<QList<QueryCorePtr>> childs() const;
    [[nodiscard]] qsizetype numberOfChilds() const;
    void setParent(const QueryCorePtr& parent);
    /// The parent, else what findParentOfQuery finds.
    [[nodiscard]] QueryCorePtr parent();
    /// Looks up the next to last UUID of the node's key path and makes what it finds the parent of this node.
    [[nodiscard]] QueryCorePtr findParentOfQuery(const QueryCorePtr& node);
    /// Makes this node the child's parent, gives the child its key path and appends it. The child is not taken out of
    /// another folder, and the key paths below it stay. Ignored for none and for a node that this one stands below.
    void addChild(const QueryCorePtr& child);
    /// As addChild, but in another place: index 0, a negative one and one past the end append; others insert there.
    void insertChild(const QueryCorePtr& child, qint64 atIndex);
    [[nodiscard]] QString keyPath() const;
    void setKeyPath(const std::optional<QString>& keyPath);
    /// Detaches the child and keeps it as it is.
    void removeChild(const QueryCorePtr& child);
    /// Detaches the child and deletes the page caches of its whole subtree.
    void deleteChild(const QueryCorePtr& child);
    /// Deletes the page cache of this node and detaches it.
    void remove();
    /// Deletes the page caches of the whole subtree and empties its folders.
    void delete_();
    /// Drops all results, the hidden ones and the page cache too.
    void removeResults();
    /// This node or the first one below it, depth first in child order.
    [[nodiscard]] QueryCorePtr findQueryForUUID(const QString& uuid);
    /// The node that a path of UUIDs leads to, this one's own first.
    [[nodiscard]] QueryCorePtr nodeForKeyPath(const QString& keyPath);
    /// Whether the node is this one or stands below it. Ask before moving a folder.
    [[nodiscard]] bool contains(const QueryCorePtr& node) const;

    // --- Private filters ----------------------------------------------------------------------------------------
    void addFilter(const FilterObject& filter);
    void replaceFilter(const FilterObject& oldFilter, const FilterObject& newFilter);
    void removeFilter(const FilterObject& filter);
    [[nodiscard]] std::optional<QList<FilterObject>> filters() const;

    // --- Results (QueryResults.cpp) -----------------------------------------------------------------------------
    /// The visible records, after the interactive search filter.
    [[nodiscard]] std::optional<ResultList> results() const;
    [[nodiscard]] std::optional<ResultList> resultsSortedBy(std::int32_t order);
    [[nodiscard]] std::optional<ResultList> hiddenResults();
    void setHidden(bool hidden, const ResultRecord& forItem);
    void markItemAsRead(const ResultRecord& item);
    void markItemAsUnread(const ResultRecord& item);
    void markAllItemAsRead();
    [[nodiscard]] std::optional<ResultRecord> setRating(qint64 rating, const ResultRecord& forItem);
    void excludeItem(const ResultRecord& item);
    void excludeURLString(const QString& address);
    /// The same for many hosts, in one pass over the results. Empty ones are passed over.
    void excludeHosts(const QStringList& hosts);
    [[nodiscard]] bool isExcludedURL(const QString& address) const;
    /// The hosts whose results are dropped, sorted; empty when there are none.
    [[nodiscard]] QStringList excludedHosts() const;
    /// Takes a host off the list of exclusions. Results that were dropped come back with a later update.
    void includeHost(const QString& host);
    [[nodiscard]] qsizetype nbItems() const;
    [[nodiscard]] qsizetype nbHiddenItems() const;
    [[nodiscard]] qint64 nbUnreadItem();
    // The same for many results, each in one pass; keys that are not there are passed over.
    void setRead(bool read, const ResultKeys& ofItems);
    void setHidden(bool hidden, const ResultKeys& ofItems);
    void setRating(qint64 rating, const ResultKeys& ofItems);
    /// Puts back results that were taken out: at the end, but for those that are in either list again.
    void restoreResults(const ResultList& visible, const ResultList& hidden);
    /// The current version of a record that was replaced meanwhile, found by its "link uuid key" among the visible
    /// (or hidden) records; the record itself when it has no such key or is still there as it is.
    [[nodiscard]] std::optional<ResultRecord> currentRecord(const ResultRecord& record) const;

    // --- Update state (written by the update cycle) ---------------------------------------------------------------
    [[nodiscard]] bool isUpdating() const;
    void setUpdating(bool updating);
    [[nodiscard]] qint64 numberOfLinksAddedOnLatestUpdate() const;
    [[nodiscard]] qint64 numberOfLinksBlacklistedOnLatestUpdate() const;
    [[nodiscard]] qint64 numberOfLinksExcludedOnLatestUpdate() const;
    /// Zeroes or sets the three counters.
    void setUpdateCounters(qint64 added, qint64 blacklisted, qint64 excluded);
    [[nodiscard]] bool queryChanged() const;
    /// Reads and clears the mark that the definition was changed.
    bool takeQueryChanged();
    /// Forgets the cached number of unread results.
    void invalidateUnread();
    void stopTaskNotificationReceived();
    /// Reads and clears the request to stop a running page copy.
    bool takeMustStopCacheCreation();
    [[nodiscard]] bool mustStopCacheCreation() const;

    // --- Snapshots ----------------------------------------------------------------------------------------------
    /// The stored fields and the place in the tree as they are now, and the number of changes made to them so far.
    struct Snapshot {
        QueryFields fields;
        QueryCorePtr parent; ///< As stored: none is not looked up.
        std::optional<QList<QueryCorePtr>> childs;
        std::int32_t sortType = 3;
        std::uint64_t generation = 0;
    };
    [[nodiscard]] Snapshot snapshot() const;
    /// Swaps in what an update made of a snapshot. Nothing happens and false is answered when the node was changed
    /// since that snapshot was taken: the merge is then to be done again.
    [[nodiscard]] bool replaceResultsIfUnchanged(std::uint64_t generation, ResultList results, Date lastUpdate);

    /// "%@ [%lu]\n%@, last update: %@. Number of Results: %ld (%@)"
    [[nodiscard]] QString description() const;

private:
    using ChildList = QList<QueryCorePtr>;

    [[nodiscard]] static QueryCorePtr makeQuery(QueryFields fields);
    void storeRestrictions(qint64 wordsResctriction, const std::optional<QString>& siteRestriction,
                           const QString& urlRegularExpression);
    void deletePageCache() const;
    void markItem(const ResultRecord& item, bool read);
    void countUnread();
    /// Says that stored fields changed, so that no update swaps in what it made of the older ones.
    void touch() { ++_generation; }

    QueryFields _fields;
    std::weak_ptr<QueryCore> _parent;
    std::optional<ChildList> _childs;
    std::shared_ptr<const TreeServices> _services;
    std::int32_t _sortType = 3;
    qint64 _nbUnread = -1;
    bool _updating = false;
    bool _queryChanged = false;
    bool _mustStopCacheCreation = false;
    qint64 _newResultsAdded_volatile = 0;
    qint64 _newResultsBlacklisted_volatile = 0;
    qint64 _newResultsExcluded_volatile = 0;
    std::optional<QString> _searchString;
    std::uint64_t _generation = 0;
};

} // namespace quarry
