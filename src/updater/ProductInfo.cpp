#include "updater/ProductInfo.h"

#include "archive/PropertyList.h"
#include "platform/SystemLog.h"
#include "platform/SystemVersion.h"

#include <QFile>

namespace quarry {

namespace {

constexpr qsizetype keySize = 32;

QByteArray keyOf(const QString& text)
{
    const auto decoded = QByteArray::fromBase64Encoding(text.toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
    return decoded && decoded.decoded.size() == keySize ? decoded.decoded : QByteArray();
}

PlistValue contentOf(const QString& file)
{
    QFile info(file);
    if (!info.open(QIODevice::ReadOnly))
        return {};
    QString reason;
    const std::optional<PlistValue> content = readPropertyList(info.readAll(), &reason);
    if (!content)
        systemLog(QStringLiteral("%1 makes no sense: %2").arg(file, reason));
    return content.value_or(PlistValue());
}

QString textOf(const PlistValue& content, const QString& key)
{
    return content[key].text().value_or(QString()).trimmed();
}

} // namespace

ProductInfo productInfoOfBundle(const QString& bundlePath)
{
    const PlistValue content = contentOf(bundlePath + QStringLiteral("/Contents/Info.plist"));
    const QString key = textOf(content, QStringLiteral("QSUpdatePublicKey"));
    ProductInfo product;
    product.version = textOf(content, QStringLiteral("CFBundleVersion"));
    product.bundlePath = bundlePath;
    product.osVersion = operatingSystemVersion();
    product.scriptUrl = Url::fromStored(textOf(content, QStringLiteral("QSUpdateScriptURL")));
    product.publicKey = keyOf(key);
    product.needsSignature = !key.isEmpty();
    product.updatesComeFromSystem = content[QStringLiteral("QSUpdatesComeFromSystem")].boolean().value_or(false);
    return product;
}

} // namespace quarry
