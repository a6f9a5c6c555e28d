#include "platform/desktop/ApplicationObject.h"

#include <QUrl>

namespace quarry {

namespace {

const QLatin1String TokenKey("activation-token");
const QLatin1String StartupKey("desktop-startup-id"); // the older name

QString tokenIn(const QVariantMap& platformData)
{
    return platformData.value(TokenKey, platformData.value(StartupKey)).toString();
}

} // namespace

QVariantMap ApplicationObject::platformData(const QString& activationToken)
{
    if (activationToken.isEmpty())
        return {};
    return {{TokenKey, activationToken}, {StartupKey, activationToken}};
}

void ApplicationObject::Activate(const QVariantMap& platformData)
{
    _owner.handle({{}, tokenIn(platformData)});
}

void ApplicationObject::Open(const QStringList& uris, const QVariantMap& platformData)
{
    QStringList files;
    for (const QString& uri : uris) {
        if (const QUrl url(uri); url.isLocalFile())
            files += url.toLocalFile();
    }
    _owner.handle({files, tokenIn(platformData)});
}

void ApplicationObject::ActivateAction(const QString&, const QVariantList&, const QVariantMap& platformData)
{
    Activate(platformData); // The programs have no actions beyond being there.
}

} // namespace quarry
