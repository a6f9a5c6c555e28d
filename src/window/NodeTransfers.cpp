#include "window/NodeTransfers.h"

#include "exchange/TreeWalk.h"
#include "session/TreeEdits.h"
#include "text/LocalisedFormat.h"
#include "window/BusySign.h"

#include <QDir>
#include <QFileDialog>
#include <QLocale>
#include <QProgressDialog>
#include <QPushButton>

#include <algorithm>
#include <utility>

namespace quarry {

namespace {

struct Kind {
    ExportFormat format;
    ExportedResults results;
    const char16_t* filter; ///< Key of its name in the file dialog.
};

constexpr Kind Kinds[] = {{ExportFormat::QsExport, ExportedResults::All, u"214_Kind qsexport"},
                          {ExportFormat::Opml, ExportedResults::All, u"214_Kind opml"},
                          {ExportFormat::Json, ExportedResults::All, u"214_Kind json"},
                          {ExportFormat::Json, ExportedResults::New, u"214_Kind new json"},
                          {ExportFormat::Csv, ExportedResults::All, u"214_Kind csv"},
                          {ExportFormat::Csv, ExportedResults::New, u"214_Kind new csv"},
                          {ExportFormat::Atom, ExportedResults::All, u"214_Kind atom"},
                          {ExportFormat::Atom, ExportedResults::New, u"214_Kind new atom"}};

QString extensionOf(ExportFormat format)
{
    return exportFormatNames().at(qsizetype(format));
}

/// A file name that the title suggests.
QString fileNameFor(const QString& title)
{
    QString name = title.simplified();
    for (const QChar forbidden : {u'/', u'\\', u':', u'\0'})
        name.replace(forbidden, u'-');
    while (name.startsWith(u'.'))
        name.remove(0, 1);
    return name.left(80);
}

/// Several nodes as one that can be exported: a top folder over them, which they do not know of.
QueryCorePtr asOne(const QList<QueryCorePtr>& nodes)
{
    if (nodes.size() == 1)
        return nodes.constFirst();
    QueryCorePtr top = QueryCore::initWithQueryFolder(QString());
    top->setChildsFromArchive(nodes);
    return top;
}

} // namespace

NodeTransfers::NodeTransfers(Parts parts, QWidget* window)
    : QObject(window), _parts(std::move(parts)), _window(window),
      _copy({_parts.session.home, _parts.session.files, _parts.session.notifications, _parts.session.timers},
            [this] { showCopy(); })
{
    connect(_parts.actions.exportNode, &QAction::triggered, this, [this] { askForExport(); });
    connect(_parts.actions.offlineCopy, &QAction::triggered, this, [this] { askForCopy(); });
}

NodeTransfers::~NodeTransfers()
{
    dropExports();
}

void NodeTransfers::dropExports()
{
    for (const std::shared_ptr<std::atomic<bool>>& cancelled : std::as_const(_exports))
        *cancelled = true;
    _exports.clear();
}

QList<QueryCorePtr> NodeTransfers::nodesOf(const QStringList& uuids) const
{
    const QList<QueryCorePtr> top = edits::topmost(_parts.tree.root(), uuids);
    return uuids.isEmpty() ? QList{_parts.tree.root()} : top;
}

void NodeTransfers::askForExport()
{
    const QStringList uuids = _parts.pane.selectedUuids();
    auto* const dialog = new QFileDialog(_window, _parts.texts.text(QStringLiteral("214_Export title")));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    QStringList filters;
    for (const Kind& kind : Kinds)
        filters.append(QStringLiteral("%1 (*.%2)")
                           .arg(_parts.texts.text(QString::fromUtf16(kind.filter)), extensionOf(kind.format)));
    dialog->setNameFilters(filters);
    dialog->setDefaultSuffix(extensionOf(Kinds[0].format));
    connect(dialog, &QFileDialog::filterSelected, dialog, [dialog, filters](const QString& filter) {
        dialog->setDefaultSuffix(extensionOf(Kinds[std::max<qsizetype>(0, filters.indexOf(filter))].format));
    });
    const QueryCorePtr single = uuids.size() == 1 ? _parts.tree.node(uuids.constFirst()) : nullptr;
    dialog->selectFile(fileNameFor(single ? single->title() : QStringLiteral("QuarrySpotter")));
    connect(dialog, &QFileDialog::fileSelected, this, [this, dialog, uuids, filters](const QString& file) {
        const Kind& kind = Kinds[std::max<qsizetype>(0, filters.indexOf(dialog->selectedNameFilter()))];
        const ExportFormat format = exportFormatOfFile(file).value_or(kind.format);
        exportTo(uuids, file, format, isOfResults(format) ? kind.results : ExportedResults::All);
    });
    dialog->open();
}

void NodeTransfers::exportTo(const QStringList& nodes, const QString& file, ExportFormat format,
                             ExportedResults results)
{
    const QList<QueryCorePtr> exported = nodesOf(nodes);
    if (exported.isEmpty()) {
        Q_EMIT ended(false, filledFormat(_parts.texts.text(QStringLiteral("214_Not exported")),
                                         {_parts.texts.text(QStringLiteral("209_Gone"))}));
        return;
    }
    const auto cancelled = std::make_shared<std::atomic<bool>>(false);
    _exports.append(cancelled);
    QProgressDialog* const progress = showProgress(
        filledFormat(_parts.texts.text(QStringLiteral("214_Exporting")), {QDir::toNativeSeparators(file)}));
    connect(progress, &QProgressDialog::canceled, this, [cancelled] { *cancelled = true; });
    const QPointer<QProgressDialog> shown = progress;
    _exporter.add([this, node = asOne(exported), file, format, results, cancelled, shown, home = _parts.session.home,
                   &files = _parts.session.files] {
        const ExportFile done = exportToFile(node, format, results, file, home, files, cancelled.get());
        // A call that is queued for an object that went is dropped by Qt.
        QMetaObject::invokeMethod(this, [this, done, shown, cancelled] {
            _exports.removeOne(cancelled);
            if (shown)
                shown->deleteLater();
            const QString path = QDir::toNativeSeparators(done.path);
            if (done.error.isEmpty())
                Q_EMIT ended(true, filledFormat(_parts.texts.text(QStringLiteral("214_Exported")), {path}));
            else if (*cancelled)
                Q_EMIT ended(true, _parts.texts.text(QStringLiteral("214_Export stopped")));
            else
                Q_EMIT ended(false, filledFormat(_parts.texts.text(QStringLiteral("214_Not exported")), {done.error}));
        });
    });
}

void NodeTransfers::askForCopy()
{
    auto* const dialog = new QFileDialog(_window, _parts.texts.text(QStringLiteral("214_Copy title")));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::Directory);
    dialog->setOption(QFileDialog::ShowDirsOnly);
    connect(dialog, &QFileDialog::fileSelected, this,
            [this, uuids = _parts.pane.selectedUuids()](const QString& folder) { copyTo(uuids, folder); });
    dialog->open();
}

void NodeTransfers::copyTo(const QStringList& nodes, const QString& folder)
{
    if (isCopying()) {
        Q_EMIT ended(false, _parts.texts.text(QStringLiteral("214_Copy runs")));
        return;
    }
    QList<QueryCorePtr> queries;
    const QList<QueryCorePtr> copied = nodesOf(nodes);
    for (const QueryCorePtr& node : copied)
        queries += queriesBelow(node);
    if (queries.isEmpty())
        return;
    _copyProgress = showProgress(_parts.texts.text(QStringLiteral("214_Copying")));
    connect(_copyProgress, &QProgressDialog::canceled, this, [this] { _copy.stop(); });
    _copy.start(queries, QDir::cleanPath(folder));
}

QProgressDialog* NodeTransfers::showProgress(const QString& text)
{
    QProgressDialog* const progress =
        makeBusySign(_parts.texts.text(QStringLiteral("214_Progress title")), text, _parts.texts, _window);
    // By itself it would hide at once: it is to say that it stops until it has.
    disconnect(progress, SIGNAL(canceled()), progress, SLOT(cancel()));
    connect(progress, &QProgressDialog::canceled, progress, [this, progress] {
        progress->setLabelText(_parts.texts.text(QStringLiteral("205_Stopping")));
        if (auto* const button = progress->findChild<QPushButton*>())
            button->setEnabled(false);
    });
    return progress;
}

void NodeTransfers::showCopy()
{
    const OfflineCopyState& state = _copy.state();
    if (!state.isRunning) {
        if (_copyProgress)
            _copyProgress->deleteLater();
        Q_EMIT ended(state.failed == 0, summaryOf(state));
        return;
    }
    if (!_copyProgress || state.isStopping)
        return;
    const QLocale locale;
    _copyProgress->setLabelText(filledFormat(
        _parts.texts.text(QStringLiteral("214_Copying query")),
        {state.title, locale.toString(state.resultsDone), locale.toString(state.results),
         locale.toString(std::min(state.queriesDone + 1, state.queries)), locale.toString(state.queries)}));
    _copyProgress->setMaximum(int(state.results));
    _copyProgress->setValue(int(state.resultsDone));
}

QString NodeTransfers::summaryOf(const OfflineCopyState& state) const
{
    const QLocale locale;
    const auto line = [&](const QString& key, qint64 count) {
        return count > 0 ? filledFormat(_parts.texts.text(key), {locale.toString(count)}) : QString();
    };
    QStringList lines = {filledFormat(_parts.texts.text(QStringLiteral("214_Copied")),
                                      {locale.toString(state.copied), locale.toString(state.counts.copied),
                                       QDir::toNativeSeparators(state.folder)}),
                         line(QStringLiteral("214_Unreadable"), state.counts.unreadable),
                         line(QStringLiteral("214_There"), state.there),
                         line(QStringLiteral("214_Failed"), state.failed),
                         _parts.texts.text(state.error),
                         state.isStopped ? _parts.texts.text(QStringLiteral("214_Copy stopped")) : QString()};
    lines.removeAll(QString());
    return lines.join(u'\n');
}

} // namespace quarry
