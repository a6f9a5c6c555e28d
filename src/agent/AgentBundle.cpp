#include "agent/AgentBundle.h"

#include "platform/Bundle.h"

#include <QDir>
#include <QFileInfo>

namespace quarry {

AgentBundle AgentBundle::at(const QString& path)
{
    AgentBundle bundle;
    bundle.path = QDir::cleanPath(path);
    const Bundle files = Bundle::at(bundle.path);
    bundle.name = files.infoValue(QStringLiteral("CFBundleName"));
    if (bundle.name.isEmpty())
        bundle.name = bundle.processName();
    bundle.version = files.infoValue(QStringLiteral("CFBundleVersion"));
    return bundle;
}

QString AgentBundle::processName() const
{
    return QFileInfo(path).completeBaseName();
}

QString AgentBundle::mainApplication() const
{
    return path.section(u'/', 0, -4);
}

QString AgentBundle::updaterApplication() const
{
    return path + QStringLiteral("/Contents/bin/QuarrySpotterUpdater.app");
}

QString AgentBundle::relaunchHelper() const
{
    return Bundle::at(path).auxiliaryExecutable(QStringLiteral("RelaunchApp"));
}

} // namespace quarry
