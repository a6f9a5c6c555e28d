#include "window/FileImport.h"

#include "text/LocalisedFormat.h"
#include "window/BusySign.h"

#include <QFileInfo>
#include <QLocale>
#include <QProgressDialog>

#include <limits>
#include <utility>

namespace quarry {

namespace {

QString nameOf(const QString& path)
{
    return QFileInfo(path).fileName();
}

} // namespace

FileImport::FileImport(Parts parts, QWidget* window) : _parts(parts), _window(window), _worker(parts.timers) {}

FileImport::~FileImport()
{
    _whenIdle.clear();
    stop();
}

void FileImport::add(const QStringList& files, const QString& folderUuid)
{
    for (const QString& file : files)
        _waiting.push_back({file, folderUuid});
    goOn();
}

void FileImport::goOn()
{
    if (_stopped || _waiting.empty() || _parts.tree.safety() == LiveTree::Safety::Loading)
        return;
    const File file = _waiting.front();
    _waiting.pop_front();
    _stopped = std::make_shared<Stopped>(false);
    _reading = nameOf(file.path);
    showSign();
    _worker.run([this, file, parts = _parts, root = _parts.tree.root(), stopped = _stopped]() -> LoopWorker::Call {
        const Made made = make(file, parts, root, *stopped);
        if (*stopped)
            return {};
        return [this, file, stopped, made] {
            if (*stopped)
                return;
            _stopped.reset();
            take(file, made);
            goOn();
            endWhenIdle();
        };
    });
}

FileImport::Made FileImport::make(const File& file, const Parts& parts, const QueryCorePtr& root,
                                  const Stopped& stopped)
{
    const QFileInfo info(file.path);
    if (!info.exists())
        return {parts.texts.text(QStringLiteral("206_No such file")), {}, {}};
    // Whoever reads from a pipe waits for the one who writes.
    if (!info.isFile())
        return {parts.texts.text(QStringLiteral("206_No file")), {}, {}};
    const FileStore::ReadResult content = parts.files.read(file.path);
    if (!content.error.isEmpty() || stopped)
        return {content.error, {}, {}};
    const ImportedForest forest = readImport(content.bytes, info.completeBaseName());
    if (!forest.fault.isEmpty() || stopped)
        return {forest.fault, {}, {}};

    // The nodes are made once and put in as they are: whatever the change is applied to later, they keep their UUIDs.
    const QueryCorePtr wanted = root->findQueryForUUID(file.folderUuid);
    const QueryCorePtr bench = QueryCore::initWithQueryFolder(QString());
    bench->setParent(wanted ? wanted : root);
    Made made;
    made.grafting = graft(forest, root, bench);
    made.fault = made.grafting.fault;
    made.nodes = bench->childs().value_or(QList<QueryCorePtr>());
    for (const QueryCorePtr& node : std::as_const(made.nodes))
        bench->removeChild(node);
    return made;
}

void FileImport::take(const File& file, const Made& made)
{
    // A tree that is not there cannot take anything.
    const QString fault = made.fault.isEmpty() && _parts.tree.isDamaged() ? _parts.tree.fault() : made.fault;
    if (!fault.isEmpty()) {
        tell(false, filledFormat(_parts.texts.text(QStringLiteral("206_Not imported")),
                                 {nameOf(file.path), _parts.texts.text(fault)}));
        return;
    }
    QList<edits::Reversible> changes;
    for (const QueryCorePtr& node : made.nodes)
        changes.append(edits::insertion(node, file.folderUuid, std::numeric_limits<qsizetype>::max()));
    if (!made.nodes.isEmpty())
        _parts.edits.perform(_parts.texts.text(QStringLiteral("201_Undo import")), edits::together(changes));
    const QLocale locale;
    const QStringList text = {filledFormat(
        _parts.texts.text(QStringLiteral("206_Imported")),
        {nameOf(file.path), locale.toString(made.grafting.queries), locale.toString(made.grafting.results)})};
    tell(true, (text + made.grafting.notes).join(u'\n'),
         made.nodes.isEmpty() ? QString() : made.nodes.constFirst()->UUID());
}

void FileImport::tell(bool isDone, const QString& text, const QString& first)
{
    _lines.append(text);
    _isAllDone = _isAllDone && isDone;
    Q_EMIT told(_isAllDone, _lines.join(u'\n'), first);
}

void FileImport::showSign()
{
    const QString text = filledFormat(_parts.texts.text(QStringLiteral("206_Importing")), {_reading});
    if (_sign) {
        _sign->setLabelText(text);
        return;
    }
    _sign = makeBusySign(_parts.texts.text(QStringLiteral("206_Import title")), text, _parts.texts, _window);
    connect(_sign, &QProgressDialog::canceled, this, [this] {
        tell(true, filledFormat(_parts.texts.text(QStringLiteral("206_Not imported")),
                                {_reading, _parts.texts.text(QStringLiteral("206_Stopped"))}));
        stop();
    });
}

void FileImport::stop()
{
    _waiting.clear();
    if (_stopped)
        *std::exchange(_stopped, nullptr) = true;
    endWhenIdle();
}

void FileImport::whenIdle(std::function<void()> call)
{
    _whenIdle.append(std::move(call));
    endWhenIdle();
}

void FileImport::endWhenIdle()
{
    if (_stopped || !_waiting.empty())
        return;
    if (_sign)
        _sign->deleteLater();
    _sign = nullptr;
    _lines.clear();
    _isAllDone = true;
    const QList<std::function<void()>> calls = std::exchange(_whenIdle, {});
    for (const std::function<void()>& call : calls)
        call();
}

} // namespace quarry
