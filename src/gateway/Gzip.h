#pragma once

#include <QByteArray>

#include <optional>

namespace quarry {

/// The first bytes, at most limit of them, of what a gzip file holds; the file may itself be cut. None when it is
/// no gzip file. However much the file would expand to, no more than limit is ever held.
[[nodiscard]] std::optional<QByteArray> gunzipped(const QByteArray& file, qsizetype limit);

} // namespace quarry
