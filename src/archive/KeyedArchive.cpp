#include "archive/KeyedArchive.h"

#include "archive/XmlPlist.h"

namespace quarry {

KeyedArchive::Opened KeyedArchive::open(const QByteArray& bytes)
{
    QString reason;
    QByteArray binary = bytes;
    if (!BinaryPlist::hasHeader(bytes)) {
        binary = binaryFromXml(bytes, reason);
        if (binary.isEmpty())
            return {nullptr, reason};
    }
    std::optional<BinaryPlist> plist = BinaryPlist::open(binary, reason);
    if (!plist)
        return {nullptr, reason};
    const std::shared_ptr<KeyedArchive> archive(new KeyedArchive(std::move(*plist)));
    reason = archive->locate();
    if (!reason.isEmpty())
        return {nullptr, reason};
    return {archive, {}};
}

QString KeyedArchive::locate()
{
    const auto child = [this](const PlistItem& dictionary, const char* key) {
        return _plist.item(_plist.find(dictionary, QLatin1String(key)));
    };
    const PlistItem top = _plist.item(_plist.topObject());
    if (top.type != PlistItem::Type::Dictionary)
        return QStringLiteral("the property list is no keyed archive");
    const PlistItem archiver = child(top, "$archiver");
    if (archiver.isValid() && !archiver.isText(QLatin1String("NSKeyedArchiver")))
        return QStringLiteral("the archive was made by an unknown kind of archiver");
    _objects = child(top, "$objects");
    const PlistItem roots = child(top, "$top");
    if (_objects.type != PlistItem::Type::Array || roots.type != PlistItem::Type::Dictionary)
        return QStringLiteral("the property list is no keyed archive");
    _rootSlot = _plist.find(roots, QLatin1String("root"));
    if (_rootSlot == NoObject && roots.count == 1)
        _rootSlot = _plist.value(roots, 0);
    if (_rootSlot == NoObject)
        return QStringLiteral("the archive has no root object");
    return {};
}

} // namespace quarry
