#include "platform/Bundle.h"

#include "platform/ProgramFile.h"

#include <QFileInfo>

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

} // namespace

Bundle Bundle::ofProgram()
{
    return Bundle(runningProgramFile());
}

Bundle::Bundle(QString programPath) : _programPath(std::move(programPath)) {}

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
