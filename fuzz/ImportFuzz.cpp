// Any bytes are imported whole or refused with a reason, and what was imported can be exported in every format; what
// OPML says of it comes back the same.

#include "FuzzTarget.h"
#include "archive/PlistWriter.h"
#include "exchange/Exports.h"
#include "exchange/Imports.h"

namespace {

quarry::QueryCorePtr newRoot()
{
    return quarry::QueryCore::initWithQueryFolder(QStringLiteral(""));
}

QByteArray exported(const quarry::QueryCorePtr& root, quarry::ExportFormat format)
{
    quarry::MemorySink sink;
    require(quarry::exportNode(root, format, quarry::ExportedResults::All, sink), "what came in cannot go out");
    return sink.bytes;
}

quarry::QueryCorePtr copyByOpml(const quarry::QueryCorePtr& root)
{
    const quarry::ImportedForest forest = quarry::readImport(exported(root, quarry::ExportFormat::Opml), QString());
    require(forest.fault.isEmpty(), "OPML of its own making is refused");
    quarry::QueryCorePtr copy = newRoot();
    require(quarry::graft(forest, copy, copy).fault.isEmpty(), "OPML of its own making does not fit");
    return copy;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes = inputOf(data, size);
    const quarry::ImportedForest forest = quarry::readImport(bytes, QStringLiteral("unnamed"));
    require(forest.fault.isEmpty() || forest.nodes.empty(), "refused by halves");
    const quarry::QueryCorePtr root = newRoot();
    const quarry::Grafting done = quarry::graft(forest, root, root);
    require(done.fault.isEmpty() || root->numberOfChilds() == 0, "put there by halves");
    for (const QString& name : quarry::exportFormatNames())
        exported(root, *quarry::exportFormatNamed(name));
    // A combined query that has lost its joined text gets it back, so the second copy is the one to compare.
    const quarry::QueryCorePtr copy = copyByOpml(root);
    require(exported(copyByOpml(copy), quarry::ExportFormat::Opml) == exported(copy, quarry::ExportFormat::Opml),
            "OPML does not come back the same");
    return 0;
}
