#include "updater/ProductInstallation.h"

#include "platform/Bundle.h"

#include <QCoreApplication>

#include <utility>

namespace quarry {

ProductInstallation::ProductInstallation(const HomeFolder& home, const QString& bundlePath, Workspace& workspace,
                                         std::function<void()> terminate, std::function<bool(const QString&)> relaunch)
    : _parts{workspace,
             _files,
             [bundlePath] { return makeDiskImageTool(bundlePath); },
             [] { return makeUpdateDownloader(); },
             home.path() + QStringLiteral("/Downloads"),
             QStringLiteral("/tmp"),
             std::move(terminate),
             std::move(relaunch)}
{
}

bool openAfterThisProcess(Workspace& workspace, const QString& bundlePath)
{
    const Bundle agent = Bundle::at(bundlePath + QStringLiteral("/Contents/Agents/QuarrySpotterAgent.app"));
    const QString helper = agent.auxiliaryExecutable(QStringLiteral("RelaunchApp"));
    return !helper.isEmpty() &&
           workspace.launch(helper, {bundlePath, QString::number(QCoreApplication::applicationPid())});
}

} // namespace quarry
