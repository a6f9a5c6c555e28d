#pragma once

#include "engines/ServiceHealth.h"

#include <QJsonObject>

#include <optional>

namespace quarry {

// The state of services in words and for programs: the same in every place that shows it.

/// "results", "none", "blocked", "layout", "unreachable": the name in files and for programs.
[[nodiscard]] QString verdictName(ServiceVerdict verdict);
/// None when there is no verdict of that name.
[[nodiscard]] std::optional<ServiceVerdict> verdictNamed(const QString& name);

/// "results", "nothing found", "blocked (HTTP status 429; 3 of 8 pages)", "results (1 of 8 pages could not be read)":
/// a few words for a person. May hold what a server said; fit for a terminal only when cleaned.
[[nodiscard]] QString healthText(const ServiceHealth& health);
/// Why nothing can have come of pages that all arrived: one line for a person; empty when something could.
[[nodiscard]] QString uselessPagesText(const ServiceHealth& health);
/// "Google, Yahoo: results; Bing: blocked (HTTP status 429)": the services of a run in the order in which they are
/// asked, those with the same state together. Empty when none was asked.
[[nodiscard]] QString healthSummary(const HealthByService& services);

/// The shape that docs/quarry-json.md promises.
[[nodiscard]] QJsonObject jsonOfHealth(const ServiceHealth& health);

} // namespace quarry
