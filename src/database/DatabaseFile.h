#pragma once

#include "model/QueryCore.h"
#include "platform/FileStore.h"
#include "platform/HomeFolder.h"

#include <QString>

#include <optional>

namespace quarry {

/// "Database.qsdata": reads the tree from it, writes the tree to it, and knows which state of the file this program
/// has seen. Two rules: nothing is written over what was not read, and a file that makes no sense is copied aside
/// before anything replaces it. Not thread-safe.
class DatabaseFile final {
public:
    /// `files` must outlive the object.
    DatabaseFile(HomeFolder home, FileStore& files);

    /// Whether load() would bring something new. One look at the file.
    enum class Compare {
        Date,  ///< By the modification date alone: what decides whether a tree is read again.
        State, ///< By everything that tells two states of a file apart: what a writer asks.
    };
    [[nodiscard]] bool isAsSeen(Compare compare) const;
    /// The date of the file when it was last read or written; none when it never was or made no sense.
    [[nodiscard]] std::optional<Date> date() const;
    /// The file that stands there was looked at before, made no sense and is safe in a copy: no need to read it again.
    [[nodiscard]] bool isKnownDamage() const;

    enum class Outcome { Loaded, Absent, Damaged, Unreadable };
    struct Loaded {
        Outcome outcome = Outcome::Absent; ///< Absent: missing or empty.
        QueryCorePtr root;                 ///< With Outcome::Loaded only.
        QString reason;                    ///< One line for a person, with Damaged and Unreadable.
    };
    /// What the bytes of such a file hold, for programs that only read; they must have been read without a fault.
    [[nodiscard]] static Loaded decode(const FileStore::ReadResult& file);
    /// Reads the file. A damaged one is copied aside at once.
    [[nodiscard]] Loaded load();
    /// Lets load() read the file again though it did not change.
    void forget() { _seen.reset(); }
    /// Where the last damaged file was copied to; empty when there was none.
    [[nodiscard]] QString damagedCopy() const { return _damagedCopy; }

    enum class Saving { Done, Failed, ChangedMeanwhile };
    struct Saved {
        Saving outcome = Saving::Failed;
        QString error; ///< One line for a person; empty when done.
    };
    /// Replaces the file, unless another program wrote it since it was last read or written here. The caller holds
    /// the writer lock.
    [[nodiscard]] Saved save(const QueryCorePtr& root);

private:
    struct Damage {
        FileStamp stamp;
        QString copyError; ///< Why it is not copied aside yet; empty when it is.
    };
    void keepDamaged(const FileStore::ReadResult& file);
    /// Why the file that stands there must not be replaced; done when it may.
    [[nodiscard]] Saved mayReplace() const;
    void sweepTemporaries() const;

    HomeFolder _home;
    FileStore& _files;
    QString _path;
    std::optional<FileStamp> _seen;
    std::optional<Damage> _damage;
    QString _damagedCopy;
};

} // namespace quarry
