#pragma once

#include "archive/PropertyListFile.h"
#include "platform/HomeFolder.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

namespace quarry {

/// How a window was left: opaque states of its parts, and what was open in it. A plain value.
struct WindowLayout {
    QByteArray geometry;
    QByteArray treeSplitter;
    QByteArray detailSplitter;
    QByteArray columns;
    QByteArray docks;                    ///< Which of the panes at the edges are shown, and where.
    QStringList expandedFolders;         ///< UUIDs
    std::optional<QString> selectedNode; ///< UUID; empty: everything.
    std::optional<qint64> order;         ///< As in ResultComparator.h.

    friend bool operator==(const WindowLayout&, const WindowLayout&) = default;
};

/// Keeps the layout in the product's preferences, beside what others have there.
class WindowMemory final {
public:
    /// `files` must outlive the object.
    WindowMemory(const HomeFolder& home, FileStore& files);

    /// Empty values for what is missing or makes no sense.
    [[nodiscard]] WindowLayout read() const;
    /// One line for a person on failure, else an empty text. Not to be called by somebody who holds the writer lock.
    [[nodiscard]] QString write(const WindowLayout& layout) const;

private:
    PropertyListFile _file;
};

} // namespace quarry
