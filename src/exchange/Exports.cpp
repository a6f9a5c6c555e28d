#include "exchange/Exports.h"

#include "exchange/AtomFeed.h"
#include "exchange/OpmlWriting.h"
#include "exchange/ResultsExport.h"
#include "model/QueryArchive.h"

#include <array>

namespace quarry {

namespace {

struct NamedFormat {
    const char16_t* name;
    ExportFormat format;
};
constexpr std::array Formats = {NamedFormat{u"json", ExportFormat::Json}, NamedFormat{u"csv", ExportFormat::Csv},
                                NamedFormat{u"opml", ExportFormat::Opml}, NamedFormat{u"atom", ExportFormat::Atom},
                                NamedFormat{u"qsexport", ExportFormat::QsExport}};

} // namespace

QStringList exportFormatNames()
{
    QStringList names;
    for (const NamedFormat& each : Formats)
        names.append(QString::fromUtf16(each.name));
    return names;
}

std::optional<ExportFormat> exportFormatNamed(const QString& name)
{
    for (const NamedFormat& each : Formats) {
        if (name == QString::fromUtf16(each.name))
            return each.format;
    }
    return std::nullopt;
}

std::optional<ExportFormat> exportFormatOfFile(const QString& path)
{
    return exportFormatNamed(path.mid(path.lastIndexOf(u'.') + 1).toLower());
}

bool isOfResults(ExportFormat format)
{
    return format == ExportFormat::Json || format == ExportFormat::Csv || format == ExportFormat::Atom;
}

bool exportNode(const QueryCorePtr& node, ExportFormat format, ExportedResults which, ByteSink& sink)
{
    switch (format) {
    case ExportFormat::Json:
        return writeJsonResults(node, which, sink);
    case ExportFormat::Csv:
        return writeCsvResults(node, which, sink);
    case ExportFormat::Opml:
        return writeOpml(node, sink);
    case ExportFormat::Atom:
        return writeAtomFeed(node, which, sink);
    case ExportFormat::QsExport:
        break;
    }
    return saveTree(node, sink);
}

} // namespace quarry
