#include "window/FileImport.h"

#include "exchange/Imports.h"
#include "text/LocalisedFormat.h"

#include <QFileInfo>
#include <QLocale>

#include <limits>

namespace quarry {

namespace {

QString faultOf(const FileStore::ReadResult& file, const StringTable& texts)
{
    if (!file.error.isEmpty())
        return file.error;
    return file.stamp ? QString() : texts.text(QStringLiteral("206_No such file"));
}

} // namespace

FileImport::Done FileImport::importFile(const QString& path, const QString& folderUuid)
{
    const QFileInfo info(path);
    const auto failed = [&](const QString& reason) {
        return Done{false, filledFormat(_texts.text(QStringLiteral("206_Not imported")), {info.fileName(), reason}),
                    QString()};
    };
    const FileStore::ReadResult file = _files.read(path);
    if (const QString fault = faultOf(file, _texts); !fault.isEmpty())
        return failed(fault);
    const ImportedForest forest = readImport(file.bytes, info.completeBaseName());
    if (!forest.fault.isEmpty())
        return failed(forest.fault);

    // The nodes are made once and put in as they are: whatever the change is applied to later, they keep their UUIDs.
    const QueryCorePtr wanted = folderUuid.isEmpty() ? _tree.root() : _tree.node(folderUuid);
    const QueryCorePtr bench = QueryCore::initWithQueryFolder(QString());
    bench->setParent(wanted ? wanted : _tree.root());
    const Grafting done = graft(forest, _tree.root(), bench);
    if (!done.fault.isEmpty())
        return failed(done.fault);
    const QList<QueryCorePtr> nodes = bench->childs().value_or(QList<QueryCorePtr>());
    QList<edits::Reversible> changes;
    for (const QueryCorePtr& node : nodes) {
        bench->removeChild(node);
        changes.append(edits::insertion(node, folderUuid, std::numeric_limits<qsizetype>::max()));
    }
    if (!nodes.isEmpty())
        _edits.perform(_texts.text(QStringLiteral("201_Undo import")), edits::together(changes));
    const QLocale locale;
    QStringList text = {filledFormat(_texts.text(QStringLiteral("206_Imported")),
                                     {info.fileName(), locale.toString(done.queries), locale.toString(done.results)})};
    return {true, (text + done.notes).join(u'\n'), nodes.isEmpty() ? QString() : nodes.constFirst()->UUID()};
}

} // namespace quarry
