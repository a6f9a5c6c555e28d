#pragma once

#include "blacklist/BlacklistArchive.h"
#include "platform/FileStore.h"

namespace quarry {

/// An ordered list of rules that answers whether an active one catches an address, rule by rule. A snapshot of a
/// file when it was made; it does not watch it. Used by one thread.
///
/// This is for editing a list. What tests many addresses asks a BlacklistStore.
class BlacklistManager final {
public:
    /// An empty list.
    BlacklistManager() = default;
    explicit BlacklistManager(StoredBlacklist list) : _bldatabase(std::move(list)) {}

    /// Loads a list file. One that is missing, empty or cannot be understood gives an empty list, and the last of
    /// these, or one that cannot be read, a line for a person in `fault` (may be null).
    [[nodiscard]] static BlacklistManager initWithDatabase(const FileStore& files, const QString& path,
                                                           QString* fault = nullptr);
    /// A new, empty list.
    [[nodiscard]] BlacklistManager copy() const { return {}; }

    /// Appends the rule, if there is one, sorts the list by type and answers where the rule stands then; without a
    /// rule, the last index. Rules of one type keep their order.
    qsizetype addToBlacklist(const BlacklistFilterPtr& filter);
    /// Removes the rule wherever it stands.
    void removeFromBlacklist(const BlacklistFilterPtr& filter);
    void setState(bool state, const BlacklistFilterPtr& filter);
    [[nodiscard]] bool isAddressFiltered(const QString& address, Logger& log) const;
    /// None for a number that no rule has.
    [[nodiscard]] BlacklistFilterPtr filterAtIndex(qsizetype index) const;
    [[nodiscard]] qsizetype filtersCount() const { return _bldatabase.filters.size(); }
    /// The rules in order, as values.
    [[nodiscard]] QList<BlacklistRule> rules() const;
    /// Replaces the file. False when it could not be written; `error` (may be null) gets one line for a person.
    [[nodiscard]] bool writeListAtPath(FileStore& files, const QString& path, QString* error = nullptr) const;

private:
    StoredBlacklist _bldatabase;
};

} // namespace quarry
