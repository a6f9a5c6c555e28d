#include "apps/quarry/CommandLine.h"
#include "apps/quarry/Naming.h"
#include "apps/quarry/Output.h"
#include "exchange/Imports.h"

#include <QFileInfo>

namespace quarry {

namespace {

struct Options {
    QString file;
    std::optional<QString> folder;
};

Outcome cannotImport(const QString& file, const QString& reason)
{
    return Outcome::failed(QStringLiteral("cannot import %1: %2").arg(shown(file), shown(reason)));
}

/// "Imported 2 queries and 1 folder with 41 results", and what else there is to know.
QString textOf(const Grafting& done)
{
    QString text =
        QStringLiteral("Imported %1 and %2 with %3")
            .arg(counted(done.queries, QStringLiteral("query")), counted(done.folders, QStringLiteral("folder")),
                 counted(done.results, QStringLiteral("result")));
    if (done.renamed > 0)
        text += QStringLiteral("\n%1 of them got new IDs, since theirs are taken").arg(done.renamed);
    for (const QString& note : done.notes)
        text += QStringLiteral("\nNote: ") + shown(note);
    return text;
}

Outcome importCommand(Session& session, const Options& options)
{
    const FileStore::ReadResult file = session.files().read(options.file);
    if (!file.error.isEmpty())
        return Outcome::failed(shown(file.error));
    if (!file.stamp)
        return Outcome::failed(QStringLiteral("there is no file %1").arg(shown(options.file)));
    const ImportedForest forest = readImport(file.bytes, QFileInfo(options.file).completeBaseName());
    if (!forest.fault.isEmpty())
        return cannotImport(options.file, forest.fault);
    return session.edit([&](const QueryCorePtr& root) -> Outcome {
        const NamedNode folder = targetFolder(root, options.folder);
        if (!folder.ok())
            return folder.fault;
        const Grafting done = graft(forest, root, folder.node);
        return done.fault.isEmpty() ? Outcome::done(textOf(done)) : cannotImport(options.file, done.fault);
    });
}

} // namespace

void addImportCommand(CommandLine& line)
{
    const auto options = std::make_shared<Options>();
    line.command(
            QStringLiteral("Exchange"), QStringLiteral("import"),
            QStringLiteral("Add the queries of a qsexport or an OPML file; nothing that is there is changed"),
            {QStringLiteral("quarry import kitchen.qsexport"),
             QStringLiteral("quarry import searches.opml --into Garden"),
             QStringLiteral("quarry import ~/backup/Database.qsdata       # everything in it, beside what is here")})
        .argument(QStringLiteral("file"), options->file, QStringLiteral("The file; its content says what it is"))
        .option(QStringLiteral("--into"), QStringLiteral("FOLDER"), options->folder,
                QStringLiteral("Where to put them; at the top level without"))
        .takesLong()
        .action([options](Session& session) { return importCommand(session, *options); });
}

} // namespace quarry
