#pragma once

#include "blacklist/BlacklistFilter.h"

#include <QByteArray>
#include <QList>

#include <memory>
#include <optional>

namespace quarry {

/// An element of a stored list that is no rule, carried through at its place.
struct CarriedElement {
    qsizetype index = 0;
    std::shared_ptr<const OpaqueObject> value;
};

/// A list of rules as it is stored.
struct StoredBlacklist {
    QList<BlacklistFilterPtr> filters;
    QList<CarriedElement> carried; ///< By ascending index.
};

/// Reads a keyed archive whose root is an array of rules. Nothing in the bytes is trusted. None, and one line for a
/// person in `reason` (may be null), when they do not decode.
[[nodiscard]] std::optional<StoredBlacklist> unarchivedBlacklist(const QByteArray& bytes, QString* reason = nullptr);

/// The keyed archive of a list; empty when what was carried cannot be written.
[[nodiscard]] QByteArray archivedBlacklist(const StoredBlacklist& list);

/// What the rule says that an object of another archive holds, such as a query's private filter; none for an object of
/// another class and for a damaged one.
[[nodiscard]] std::optional<BlacklistRule> blacklistRuleOf(const OpaqueObject& object);
/// The rule as such an object, in an archive of its own.
[[nodiscard]] std::shared_ptr<const OpaqueObject> objectOfBlacklistRule(const BlacklistRule& rule);

} // namespace quarry
