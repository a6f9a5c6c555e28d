#pragma once

#include "blacklist/BlacklistManager.h"
#include "blacklist/BlacklistStore.h"

#include <QList>

#include <optional>
#include <utility>

namespace quarry {

/// A private copy of the shared list, edited at leisure. Nothing reaches the file before write(), and no rule that
/// another program wrote meanwhile is lost by it: when the file is no longer the one that was read, the edits made
/// here are made again on the list that is there now.
///
/// Used by one thread at a time. A copy shares the rules until it reads the file: it may follow() and write() on
/// another thread as long as nobody changes a rule of this one meanwhile.
class BlacklistDraft final {
public:
    /// `files` must outlive the object. Nothing is read yet.
    BlacklistDraft(HomeFolder home, FileStore& files);

    /// Whether the file was read at all.
    [[nodiscard]] bool isLoaded() const { return _isLoaded; }
    /// Reads the file; edits are gone. One that cannot be read or understood gives an empty list.
    void reload();
    /// Whether the file is the one that was read, as one look at its state tells.
    [[nodiscard]] bool isCurrent() const;
    /// Why the file could not be read the last time, in one line for a person; empty when it could.
    [[nodiscard]] const QString& fault() const { return _fault; }
    /// When the file changed since it was read, or could not be: reads it and makes the edits again on it. Every rule
    /// may be another object then. False when there was nothing to do.
    bool follow();

    [[nodiscard]] BlacklistManager& list() { return _list; }
    [[nodiscard]] const BlacklistManager& list() const { return _list; }
    /// Whether the list says something else than the file did when it was read.
    [[nodiscard]] bool hasEdits() const { return !editsSince().isEmpty(); }
    /// The place of the last rule that says this; -1 when none does.
    [[nodiscard]] qsizetype placeOf(const BlacklistRule& rule) const;

    /// Writes the list, by the rules of BlacklistStore::change. On success the list is the file's, read again (every
    /// rule may be another object), and there are no edits; on failure everything stays, and one line for a person is
    /// returned.
    [[nodiscard]] QString write();

private:
    /// One rule as it was read, and the object that holds what became of it.
    struct Loaded {
        BlacklistFilterPtr filter;
        BlacklistRule rule;
    };
    struct Edits {
        QList<BlacklistRule> removed;
        QList<std::pair<BlacklistRule, BlacklistRule>> changed; ///< What a rule was, what it is.
        QList<BlacklistRule> added;
        [[nodiscard]] bool isEmpty() const { return removed.isEmpty() && changed.isEmpty() && added.isEmpty(); }
    };
    [[nodiscard]] Edits editsSince() const;
    static void make(const Edits& edits, BlacklistManager& list);
    void remember();

    HomeFolder _home;
    FileStore* _files;
    BlacklistManager _list;
    QList<Loaded> _loaded;
    std::optional<FileStamp> _stamp; ///< Of the file when it was read, or before; none for a missing one.
    QString _fault;
    bool _isLoaded = false;
};

} // namespace quarry
