#pragma once

#include <QByteArray>
#include <QString>

#include <set>
#include <unordered_map>

namespace quarry {

/// Tells which folders of a tree changed. The system queues the changes as they happen; nothing waits and no thread
/// runs: take() gives everything that happened before the call. Not thread-safe.
class FolderWatch final {
public:
    /// Paths are relative to the root; the root itself is the empty path.
    struct Changes {
        std::set<QByteArray> folders; ///< Something in that folder itself changed: list it again.
        std::set<QByteArray>
            trees; ///< A folder came, went, or took the place of another: look at all of it again, and watch it anew.
        bool everything = false; ///< Changes were lost: look at the whole tree again.
        [[nodiscard]] bool isEmpty() const { return folders.empty() && trees.empty() && !everything; }
    };

    explicit FolderWatch(const QString& root);
    FolderWatch(const FolderWatch&) = delete;
    FolderWatch& operator=(const FolderWatch&) = delete;
    ~FolderWatch();

    /// Watches that folder, without those below it; watching it again is no error. False when the system has no
    /// watch left: isComplete() is false from then on, and the tree has to be looked at by other means.
    bool add(const QByteArray& folder);
    [[nodiscard]] bool isComplete() const { return _complete; }

    [[nodiscard]] Changes take();

private:
    void note(Changes& changes, int watch, unsigned mask, const QByteArray& name);

    QByteArray _root;
    int _descriptor = -1;
    bool _complete = true;
    std::unordered_map<int, QByteArray> _folders; ///< By the system's number of the watch.
};

} // namespace quarry
