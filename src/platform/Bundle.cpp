#include "platform/Bundle.h"

#include "platform/ProgramFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QXmlStreamReader>

namespace quarry {

namespace {

/// The first folder upwards from the file that the test accepts; empty when there is none.
template <typename Accepts>
QString nearestFolder(const QString& file, Accepts accepts)
{
    QString folder = file;
    for (qsizetype slash = folder.lastIndexOf(u'/'); slash > 0; slash = folder.lastIndexOf(u'/')) {
        folder.truncate(slash);
        if (accepts(folder))
            return folder;
    }
    return {};
}

bool isContentsFolder(const QString& folder)
{
    return folder.endsWith(QLatin1String("/Contents"));
}

/// Far more than any description of a bundle holds.
constexpr qint64 LongestInfo = 1 << 20;

/// The text of a key of the outermost dictionary.
QString textInInfo(const QByteArray& info, const QString& key)
{
    QXmlStreamReader xml(info);
    if (!xml.readNextStartElement() || xml.name() != QLatin1String("plist") || !xml.readNextStartElement() ||
        xml.name() != QLatin1String("dict"))
        return {};
    bool isNext = false;
    while (xml.readNextStartElement()) {
        if (xml.name() == QLatin1String("key"))
            isNext = xml.readElementText() == key;
        else if (isNext)
            return xml.name() == QLatin1String("string") ? xml.readElementText() : QString();
        else
            xml.skipCurrentElement();
    }
    return {};
}

} // namespace

Bundle Bundle::ofProgram()
{
    return Bundle(runningProgramFile());
}

Bundle::Bundle(QString programPath) : _programPath(std::move(programPath)) {}

Bundle Bundle::at(const QString& bundlePath)
{
    return Bundle(QDir::cleanPath(bundlePath) + QStringLiteral("/Contents/bin/program"));
}

QString Bundle::bundlePath() const
{
    return nearestFolder(_programPath, [](const QString& folder) { return folder.endsWith(QLatin1String(".app")); });
}

QString Bundle::infoValue(const QString& key) const
{
    QFile info(bundlePath() + QStringLiteral("/Contents/Info.plist"));
    return info.open(QIODevice::ReadOnly) ? textInInfo(info.read(LongestInfo), key) : QString();
}

QString Bundle::executable() const
{
    const QString program = auxiliaryExecutable(infoValue(QStringLiteral("CFBundleExecutable")));
    return QFileInfo(program).isFile() ? program : QString();
}

QString Bundle::auxiliaryExecutable(const QString& name) const
{
    const QString bundle = bundlePath();
    if (bundle.isEmpty() || name.isEmpty() || name.contains(u'/') || name.startsWith(u'.'))
        return {};
    const QString path = bundle + QStringLiteral("/Contents/bin/") + name;
    return QFileInfo(path).isExecutable() ? path : QString();
}

QString Bundle::resourcesFolder() const
{
    const QString resources = QStringLiteral("/Resources");
    const QString contents = nearestFolder(_programPath, [&](const QString& folder) {
        return isContentsFolder(folder) && QFileInfo(folder + resources + QStringLiteral("/English.lproj")).isDir();
    });
    return contents.isEmpty() ? QString() : contents + resources;
}

QString Bundle::contentsFolder() const
{
    return nearestFolder(_programPath, [](const QString& folder) {
        return folder.endsWith(QLatin1String("/QuarrySpotter.app/Contents"));
    });
}

QString Bundle::updaterProgram() const
{
    const QString contents = contentsFolder();
    const QString program =
        contents + QStringLiteral("/Agents/QuarrySpotterAgent.app/Contents/bin/QuarrySpotterUpdater.app/Contents/bin/"
                                  "QuarrySpotterUpdater");
    return !contents.isEmpty() && QFileInfo(program).isExecutable() ? program : QString();
}

} // namespace quarry
