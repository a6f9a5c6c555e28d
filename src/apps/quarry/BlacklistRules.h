#pragma once

#include "apps/quarry/CommandLine.h"
#include "blacklist/BlacklistStore.h"

#include <functional>

namespace quarry {

// What the blacklist commands have in common.

/// "text", "domain", "file", "regex"
[[nodiscard]] QStringList ruleTypeNames();
/// One of them, else the number.
[[nodiscard]] QString nameOfRuleType(qint64 type);
[[nodiscard]] qint64 ruleTypeNamed(const QString& name);
/// `domain rule "ads.example"`
[[nodiscard]] QString described(const BlacklistRule& rule);

/// The list as it is in the file; empty when there is none yet.
struct LoadedRules {
    BlacklistManager manager;
    Outcome fault;
};
[[nodiscard]] LoadedRules loadRules(Session& session);
/// Applies one change to the list that is in the file by then.
[[nodiscard]] Outcome changeRules(Session& session, const std::function<Outcome(BlacklistManager&)>& apply);

/// Describes `blacklist list` and `blacklist test`.
void addBlacklistLooking(Command& blacklist);

} // namespace quarry
