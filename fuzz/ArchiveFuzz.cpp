// Any bytes give a tree or a reason, and what gives a tree can be saved and read again.

#include "FuzzTarget.h"
#include "archive/PlistWriter.h"
#include "archive/SmallArchive.h"
#include "model/QueryArchive.h"

namespace {

qsizetype countNodes(const quarry::QueryCorePtr& node)
{
    qsizetype count = 1;
    for (const quarry::QueryCorePtr& child : node->childs().value_or(QList<quarry::QueryCorePtr>()))
        count += countNodes(child);
    return count;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes = inputOf(data, size);
    QString reason;
    require(quarry::unarchivedValue(bytes, &reason) || !reason.isEmpty(), "neither a value nor a reason");

    const quarry::LoadedTree first = quarry::loadTree(bytes);
    require((first.root == nullptr) == !first.reason.isEmpty(), "neither a tree nor a reason");
    if (!first.root)
        return 0;
    quarry::MemorySink sink;
    require(quarry::saveTree(first.root, sink), "what was loaded cannot be saved");
    const quarry::LoadedTree second = quarry::loadTree(sink.bytes);
    require(second.root != nullptr, "what was saved cannot be loaded");
    require(countNodes(first.root) == countNodes(second.root), "nodes were lost in a save");
    return 0;
}
