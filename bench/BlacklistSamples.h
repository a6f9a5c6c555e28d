#pragma once

#include "blacklist/BlacklistRule.h"

#include <QList>
#include <QString>

namespace quarry::bench {

/// Addresses as searches bring them, the same ones every time; a few are caught by the rules below.
[[nodiscard]] QList<QString> sampleAddresses(int count);
/// Text, domain and file-type rules, a third each, every fourth with case.
[[nodiscard]] QList<BlacklistRule> sampleTextRules(int count);
/// Expressions as people write them for addresses; a few hold no text that every match must hold.
[[nodiscard]] QList<BlacklistRule> sampleExpressionRules(int count);

} // namespace quarry::bench
