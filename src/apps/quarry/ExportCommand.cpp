#include "apps/quarry/CommandLine.h"
#include "apps/quarry/Naming.h"
#include "apps/quarry/Output.h"
#include "apps/quarry/QuitWatch.h"
#include "exchange/ExportFile.h"
#include "platform/Terminal.h"

#include <cstdio>

namespace quarry {

namespace {

struct Options {
    std::optional<QString> node;
    std::optional<QString> format;
    std::optional<QString> file;
    bool fresh = false;
    [[nodiscard]] bool toFile() const
    {
        return file && *file != QLatin1String("-") && *file != QLatin1String("/dev/stdout");
    }
};

class StandardOutput final : public ByteSink {
public:
    [[nodiscard]] bool append(const char* data, std::size_t size) override
    {
        return std::fwrite(data, 1, size, stdout) == size;
    }
};

/// What was asked for, else what the file's name says, else JSON.
ExportFormat formatOf(const Options& options)
{
    const auto named = options.format ? exportFormatNamed(*options.format) : std::nullopt;
    const auto ofFile = options.toFile() ? exportFormatOfFile(*options.file) : std::nullopt;
    return named.value_or(ofFile.value_or(ExportFormat::Json));
}

Outcome writeFile(Session& session, const QueryCorePtr& node, ExportFormat format, ExportedResults which,
                  const QString& name)
{
    // What is written of it goes when it is broken off.
    std::atomic<bool> isStopped = false;
    const QuitWatch watch([&isStopped] { isStopped = true; });
    const ExportFile file = exportToFile(node, format, which, name, session.home(), session.files(), &isStopped);
    if (!file.error.isEmpty() && isStopped)
        return Outcome::failed(QStringLiteral("stopped; nothing was written"));
    return file.error.isEmpty() ? Outcome::done(QStringLiteral("Wrote ") + shown(file.path))
                                : Outcome::failed(shown(file.error));
}

Outcome exportCommand(Session& session, const Options& options)
{
    const ExportFormat format = formatOf(options);
    if (options.fresh && !isOfResults(format))
        return Outcome::wrongUse(QStringLiteral("--new goes with results, so with json, csv and atom"));
    if (!options.toFile() && format == ExportFormat::QsExport && isTerminal(stdout))
        return Outcome::wrongUse(QStringLiteral("a qsexport is nothing to read; name a file with --output"));
    const Session::Loaded tree = session.load();
    if (!tree.ok())
        return tree.fault;
    const NamedNode named = options.node ? nodeNamed(tree.root, *options.node) : NamedNode{tree.root, {}};
    if (!named.ok())
        return named.fault;
    const ExportedResults which = options.fresh ? ExportedResults::New : ExportedResults::All;
    if (options.toFile())
        return writeFile(session, named.node, format, which, *options.file);
    StandardOutput out;
    return exportNode(named.node, format, which, out)
               ? Outcome::done()
               : Outcome::failed(QStringLiteral("the output could not be written"));
}

} // namespace

void addExportCommand(CommandLine& line)
{
    const auto options = std::make_shared<Options>();
    line.command(QStringLiteral("Exchange"), QStringLiteral("export"),
                 QStringLiteral("Write queries or results for other programs"),
                 {QStringLiteral("quarry export --output searches.opml         # the tree"),
                  QStringLiteral("quarry export Kitchen --output results.csv   # for a spreadsheet"),
                  QStringLiteral("quarry export --format atom -o ~/public/new.atom"),
                  QStringLiteral("quarry export Kitchen -o kitchen.qsexport    # everything, for quarry import")})
        .optionalArgument(QStringLiteral("query"), options->node,
                          QStringLiteral("The query or folder; everything without"))
        .choice(QStringLiteral("--format"), options->format, exportFormatNames(),
                QStringLiteral("json and csv: the results; opml: the queries; atom: a feed of new and unread results; "
                               "qsexport: queries with their results. Without, the file's extension says it, or json"))
        .option(QStringLiteral("-o,--output"), QStringLiteral("FILE"), options->file,
                QStringLiteral("Where to write; standard output without"))
        .flag(QStringLiteral("--new"), options->fresh, QStringLiteral("Only results that the latest refresh brought"))
        .action([options](Session& session) { return exportCommand(session, *options); });
}

} // namespace quarry
