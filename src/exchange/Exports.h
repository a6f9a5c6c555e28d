#pragma once

#include "model/QueryCore.h"
#include "platform/FileStore.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace quarry {

/// The formats that queries and results are written in for other programs, for people, and for another home folder.
/// docs/exchange-formats.md describes each.
enum class ExportFormat {
    Json,     ///< Results, as `quarry results --json` prints them.
    Csv,      ///< Results, for spreadsheets.
    Opml,     ///< The tree with the definitions of its queries. Can be imported.
    Atom,     ///< A feed of what is new or unread.
    QsExport, ///< Everything about a node and what lies below it. Can be imported.
};

/// "json", "csv", "opml", "atom", "qsexport"
[[nodiscard]] QStringList exportFormatNames();
[[nodiscard]] std::optional<ExportFormat> exportFormatNamed(const QString& name);
/// The format that a file name's extension names; none for other names.
[[nodiscard]] std::optional<ExportFormat> exportFormatOfFile(const QString& path);
/// Whether the format can hold some results and not others.
[[nodiscard]] bool isOfResults(ExportFormat format);

enum class ExportedResults {
    All, ///< In a feed: what the latest refresh brought, and everything unread.
    New, ///< What the latest refresh brought.
};

/// Writes a query, or a folder with everything below it; hidden results only into a qsexport. The same tree gives the
/// same bytes. False when the sink refused something, and for a tree too deep for an archive.
[[nodiscard]] bool exportNode(const QueryCorePtr& node, ExportFormat format, ExportedResults which, ByteSink& sink);

} // namespace quarry
