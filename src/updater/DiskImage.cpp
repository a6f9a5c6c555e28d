#include "updater/DiskImage.h"

#include <QFileInfo>

namespace quarry {

namespace {

QString systemTool()
{
    return QStringLiteral("/usr/bin/hdiutil");
}

class RealDiskImageTool final : public DiskImageTool {
public:
    explicit RealDiskImageTool(const QString& path) : _program(path) {}
    int run(const QStringList& arguments, const SealedFile* image) override
    {
        return _program.isThere() ? _program.run(arguments, image) : -1;
    }

private:
    ToolProgram _program;
};

bool isThere(const QString& path)
{
    const QFileInfo info(path);
    return info.exists() || info.isSymLink();
}

} // namespace

std::unique_ptr<DiskImageTool> makeDiskImageTool(const QString& bundlePath)
{
    return std::make_unique<RealDiskImageTool>(QFileInfo(systemTool()).isExecutable()
                                                   ? systemTool()
                                                   : bundlePath + QStringLiteral("/Contents/bin/DiskImageTool"));
}

QString mountDMGFile(DiskImageTool& tool, const QString& path, const SealedFile* sealed, const QString& folder)
{
    if (isThere(folder))
        unmountDiskImage(tool, folder);
    const int status =
        tool.run({QStringLiteral("attach"), QStringLiteral("-quiet"), QStringLiteral("-readonly"),
                  QStringLiteral("-mountpoint"), folder, QStringLiteral("-nobrowse"), QStringLiteral("-owners"),
                  QStringLiteral("on"), sealed ? ToolProgram::passedFile() : path},
                 sealed);
    return status == 0 && QFileInfo(folder).isDir() ? folder : QString();
}

void unmountDiskImage(DiskImageTool& tool, const QString& mountPoint)
{
    if (!mountPoint.isEmpty())
        tool.run({QStringLiteral("detach"), QStringLiteral("-quiet"), mountPoint, QStringLiteral("-force")}, nullptr);
}

} // namespace quarry
