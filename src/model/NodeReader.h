#pragma once

#include "archive/ArchiveReader.h"
#include "model/NodeKeys.h"
#include "model/OpaqueValues.h"
#include "model/QueryFields.h"
#include "model/RecordArchive.h"

#include <QHash>

#include <array>
#include <cstdint>
#include <optional>

namespace quarry {

/// One node as it is stored: its fields, and what its entries say about its place in the tree.
struct StoredNode {
    QueryFields fields;
    /// The object of the node that the parent entry leads to; NoObject when it leads to none.
    std::uint32_t parent = KeyedArchive::NoObject;
    /// The children that are nodes; the others are among the fields. None when there is no list.
    std::optional<QList<ArchivedValue>> childs;
};

/// Reads the nodes of one archive, each by itself. A missing entry reads as its default; the original of an entry
/// whose value is of an unexpected type is carried along with the unknown ones.
class NodeReader final {
public:
    NodeReader(ArchiveReader& reader, OpaqueValues& opaque) : _reader(reader), _opaque(opaque), _records(reader, opaque)
    {
    }
    [[nodiscard]] StoredNode read(const ArchivedValue& value);

private:
    void sortEntries(const ArchivedValue& value);
    void readFields();
    [[nodiscard]] ArchivedValue entry(NodeKey key);
    /// Carries along the original of an entry, if there is one.
    void keep(NodeKey key);

    [[nodiscard]] std::optional<QString> text(NodeKey key);
    [[nodiscard]] std::optional<qint64> integer(NodeKey key);
    [[nodiscard]] bool boolean(NodeKey key, bool otherwise = false);
    [[nodiscard]] std::optional<Date> date(NodeKey key);
    [[nodiscard]] std::optional<SlotList> list(NodeKey key);
    [[nodiscard]] std::optional<ResultList> results(NodeKey key);
    [[nodiscard]] std::optional<QList<FilterObject>> filters();
    [[nodiscard]] std::optional<QStringList> combinedQueries();
    [[nodiscard]] QMap<QString, bool> excludedDomains();
    [[nodiscard]] std::optional<QList<ArchivedValue>> childs();
    /// One that many nodes have: decoded once.
    [[nodiscard]] std::optional<QString> sharedText(const ArchivedValue& value);

    ArchiveReader& _reader;
    OpaqueValues& _opaque;
    RecordReader _records;
    std::array<std::uint32_t, NodeKeyCount> _slots{}; ///< Of the node at hand.
    QueryFields _fields;
    QHash<std::uint32_t, QString> _sharedTexts; ///< By object.
};

} // namespace quarry
