#pragma once

#include "model/ResultRecord.h"

#include <QSet>
#include <QString>

namespace quarry {

/// The links of some records, to be asked whether a link is among them. Two links are the same when their addresses
/// are equal, or when they have the same host and the same path, an empty path and "/" being one; query strings and
/// fragments make no difference. Hosts compare exactly, paths as they are written, escapes included; links without a
/// host are the same only when their whole addresses are equal.
///
/// Every question is one look-up, however many links there are.
class KnownLinks final {
public:
    /// What is equal for two links exactly when they are the same link.
    [[nodiscard]] static QString keyOf(const Url& address);

    KnownLinks() = default;
    /// Records without an address are left out.
    explicit KnownLinks(const ResultList& records);

    [[nodiscard]] bool contains(const QString& key) const { return _keys.contains(key); }
    [[nodiscard]] bool contains(const Url& address) const { return contains(keyOf(address)); }
    void add(const QString& key) { _keys.insert(key); }

private:
    QSet<QString> _keys;
};

} // namespace quarry
