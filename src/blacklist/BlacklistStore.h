#pragma once

#include "blacklist/BlacklistManager.h"
#include "blacklist/BlacklistMatcher.h"
#include "platform/FileStore.h"
#include "platform/HomeFolder.h"

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>

namespace quarry {

/// The shared "Blacklist" file, ready for tests. Every test looks whether the file was replaced, so that a save by
/// any process is seen by the next one; between saves it is neither read nor compiled again. Thread-safe.
class BlacklistStore final {
public:
    /// `files` must outlive the object.
    BlacklistStore(HomeFolder home, FileStore& files);

    /// The rules of one state of the file. Unchanging; may be kept as long as one likes.
    struct Snapshot {
        QList<BlacklistRule> rules;
        BlacklistMatcher matcher;
        explicit Snapshot(const QList<BlacklistRule>& list)
            : rules(list), matcher(list, BlacklistMatcher::Which::Active)
        {
        }
    };
    /// What the file holds now. A file that cannot be read or understood holds no rules; that is told once, on the
    /// system log.
    [[nodiscard]] std::shared_ptr<const Snapshot> current();

    /// Whether an active rule catches the address; which one is told by current()->matcher.
    [[nodiscard]] bool isAddressFiltered(const QString& address, Logger& log);

    /// One edit: takes the writers' lock, reads the file, lets `apply` change the list, replaces the file, lets go.
    /// Nothing is written when `apply` answers false. A file that cannot be understood is copied aside first; one that
    /// cannot be read or copied is left alone. Not to be called by somebody who holds the lock. Returns one line for
    /// a person on failure, else an empty text; that the lock was not to be had within `patience` is one.
    [[nodiscard]] QString change(const std::function<bool(BlacklistManager&)>& apply,
                                 std::chrono::milliseconds patience = std::chrono::seconds(10));

private:
    void report(const QString& fault);
    /// The list as it is for an edit; none, with `error` set, when the file must not be replaced.
    [[nodiscard]] std::optional<BlacklistManager> listToChange(QString& error);

    HomeFolder _home;
    FileStore& _files;
    std::mutex _mutex;
    std::shared_ptr<const Snapshot> _snapshot;
    std::optional<FileStamp> _stamp; ///< Of the file that the snapshot was read from; none for a missing one.
    QString _reported;               ///< The fault told last.
};

} // namespace quarry
