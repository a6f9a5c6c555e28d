#include "platform/XdgLoginItems.h"

#include "platform/Bundle.h"
#include "platform/DesktopEntry.h"
#include "platform/FileStore.h"
#include "platform/SystemLog.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <optional>

namespace quarry {

namespace {

using Values = QMap<QString, QString>;

/// An entry longer than this is none.
constexpr qint64 LongestEntry = 256 << 10;
const QLatin1String Application("Application");
/// Tells the product's own entries from those of others.
const QLatin1String OwnMark("X-QuarrySpotter-Bundle");

std::optional<Values> readEntry(const QString& path)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly) || file.size() > LongestEntry)
        return std::nullopt;
    return readDesktopEntry(file.readAll());
}

/// "Hidden" is the format's own; desktops have added switches of their own to it.
bool isSwitchedOff(const Values& entry)
{
    if (entry.value(QStringLiteral("Hidden")) == QLatin1String("true"))
        return true;
    for (auto i = entry.cbegin(); i != entry.cend(); ++i) {
        if (i.key().startsWith(QLatin1String("X-")) && i.key().endsWith(QLatin1String("-Autostart-enabled")) &&
            i.value() == QLatin1String("false"))
            return true;
    }
    return false;
}

/// The bundle that an entry starts, or the program where there is no bundle; empty when it is gone.
QString pathOf(const Values& entry)
{
    const QStringList command = commandOfExecValue(entry.value(QStringLiteral("Exec")));
    if (command.isEmpty() || !command.first().startsWith(u'/') || !QFileInfo::exists(command.first()))
        return {};
    const QString bundle = Bundle(command.first()).bundlePath();
    return bundle.isEmpty() ? command.first() : bundle;
}

LoginItemList::Item itemOf(const QString& fileName, const Values& entry)
{
    return {entry.value(QStringLiteral("Name")), pathOf(entry), isSwitchedOff(entry), fileName};
}

QByteArray entryFor(const QString& bundlePath, const QString& name, const QString& program)
{
    return writeDesktopEntry({{QStringLiteral("Type"), Application},
                              {QStringLiteral("Name"), name},
                              {QStringLiteral("Exec"), execValue({program})},
                              {QStringLiteral("TryExec"), program},
                              {QStringLiteral("Terminal"), QStringLiteral("false")},
                              {QStringLiteral("NoDisplay"), QStringLiteral("true")},
                              {QStringLiteral("StartupNotify"), QStringLiteral("false")},
                              {OwnMark, bundlePath}});
}

/// A file name for the bundle's entry that takes nobody else's place.
QString freeFileName(const QString& folder, const QString& base)
{
    for (int number = 1;; ++number) {
        const QString name =
            number == 1 ? base + QStringLiteral(".desktop") : QStringLiteral("%1-%2.desktop").arg(base).arg(number);
        const QString path = folder + u'/' + name;
        const auto entry = readEntry(path);
        const bool isThere = QFileInfo::exists(path) || QFileInfo(path).isSymLink();
        if (!isThere || (entry && entry->contains(OwnMark)))
            return path;
    }
}

} // namespace

XdgLoginItems::XdgLoginItems()
    : XdgLoginItems(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
                    QStringLiteral("/autostart"))
{
}

XdgLoginItems::XdgLoginItems(QString autostartFolder) : _folder(std::move(autostartFolder)) {}

QList<LoginItemList::Item> XdgLoginItems::items()
{
    QList<Item> found;
    const QStringList names = QDir(_folder).entryList({QStringLiteral("*.desktop")}, QDir::Files, QDir::Name);
    for (const QString& name : names) {
        const auto entry = readEntry(_folder + u'/' + name);
        if (entry && entry->value(QStringLiteral("Type"), Application) == Application)
            found.append(itemOf(name, *entry));
    }
    return found;
}

bool XdgLoginItems::append(const QString& bundlePath)
{
    const Bundle bundle = Bundle::at(bundlePath);
    const QString program = bundle.executable();
    const QString name = QFileInfo(bundle.bundlePath()).completeBaseName();
    if (program.isEmpty() || !QDir().mkpath(_folder))
        return false;
    const QString identifier = bundle.infoValue(QStringLiteral("CFBundleIdentifier"));
    const QString base = identifier.isEmpty() || identifier.contains(u'/') ? name : identifier;
    // A desktop may leave nothing but the switch in it.
    const auto there = readEntry(_folder + u'/' + base + QStringLiteral(".desktop"));
    if (there && isSwitchedOff(*there))
        return true;
    const auto written = DiskFileStore().replace(freeFileName(_folder, base), QStringLiteral(".quarry-"), 0644,
                                                 entryFor(bundle.bundlePath(), name, program));
    if (!written.ok())
        systemLog(written.error);
    return written.ok();
}

bool XdgLoginItems::remove(const Item& item)
{
    const QString path = _folder + u'/' + item.identifier;
    const auto entry = item.identifier.contains(u'/') ? std::nullopt : readEntry(path);
    return entry && !isSwitchedOff(*entry) && QFile::remove(path);
}

} // namespace quarry
