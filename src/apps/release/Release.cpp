#include "apps/release/Release.h"

#include "archive/PropertyList.h"
#include "platform/FileStore.h"
#include "text/Data.h"
#include "updater/ImageSignature.h"
#include "updater/ImageWriter.h"
#include "updater/ProductInfo.h"
#include "updater/TrustedAddress.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace quarry {

namespace {

struct Signature {
    QByteArray bytes;
    QString publicKey; ///< As it stands in Info.plist.
    QString fault;
};

Signature signatureOfFile(const QString& path, const QString& keyFile)
{
    QFile key(keyFile);
    QFile image(path);
    if (!key.open(QIODevice::ReadOnly))
        return {{}, {}, QStringLiteral("%1: %2").arg(keyFile, key.errorString())};
    if (!image.open(QIODevice::ReadOnly))
        return {{}, {}, QStringLiteral("%1: %2").arg(path, image.errorString())};
    const QByteArray seed = QByteArray::fromBase64(key.readAll().trimmed());
    const std::optional<QByteArray> signature = signatureOf(image.readAll(), seed);
    if (!signature)
        return {{}, {}, QStringLiteral("%1 holds no signing key").arg(keyFile)};
    return {*signature, QString::fromLatin1(publicKeyOf(seed).value_or(QByteArray()).toBase64()), {}};
}

QString faultOf(const ReleaseOrder& order, const ProductInfo& product)
{
    if (product.version.isEmpty())
        return QStringLiteral("%1 is no bundle with a version").arg(order.bundle);
    if (!isTrustedUpdateAddress(Url::fromStored(order.imageUrl)))
        return QStringLiteral("%1 is not HTTPS: no program would load from there").arg(order.imageUrl);
    // Fields of the reply end at semicolons.
    if (order.page.contains(u';') || order.imageUrl.contains(u';'))
        return QStringLiteral("an address must not hold a semicolon");
    return product.needsSignature && order.keyFile.isEmpty()
               ? QStringLiteral("the bundle's own updates need a signature: name the key file")
               : QString();
}

QString write(const QString& path, const QByteArray& bytes)
{
    DiskFileStore files;
    return files.replace(path, QStringLiteral(".release"), 0644, bytes).error;
}

} // namespace

ReleaseResult makeKey(const QString& keyFile)
{
    const std::optional<SigningKey> key = makeSigningKey();
    if (!key)
        return {QStringLiteral("no key could be made"), {}};
    DiskFileStore files;
    const FileStore::WriteResult written =
        files.create(keyFile, QStringLiteral(".release"), 0600, key->seed.toBase64() + '\n');
    return {written.error, QStringLiteral("public key: %1\n").arg(QString::fromLatin1(key->publicKey.toBase64()))};
}

ReleaseResult makeRelease(const ReleaseOrder& order)
{
    const ProductInfo product = productInfoOfBundle(order.bundle);
    if (QString fault = faultOf(order, product); !fault.isEmpty())
        return {fault, {}};
    const QString name = QStringLiteral("QuarrySpotter-%1.iso").arg(product.version);
    const QString image = QDir(order.folder).filePath(name);
    if (QString fault = writeImage(order.bundle, image); !fault.isEmpty())
        return {fault, {}};
    QString report = image + u'\n';
    if (!order.keyFile.isEmpty()) {
        const Signature signature = signatureOfFile(image, order.keyFile);
        const QString file = image + QStringLiteral(".sig");
        const QString own = QString::fromLatin1(product.publicKey.toBase64());
        if (!signature.fault.isEmpty())
            return {signature.fault, {}};
        if (product.needsSignature && signature.publicKey != own)
            return {QStringLiteral("this key is not the one that the bundle names: %1").arg(own), {}};
        if (QString fault = write(file, signature.bytes); !fault.isEmpty())
            return {fault, {}};
        report += file + u'\n';
    }
    const QByteArray reply = QStringLiteral("%1;%2;%3;%4/%5")
                                 .arg(product.version, QString::number(order.minimumOs), order.page,
                                      order.imageUrl.endsWith(u'/') ? order.imageUrl.chopped(1) : order.imageUrl, name)
                                 .toUtf8();
    const QString file = QDir(order.folder).filePath(QStringLiteral("update-reply"));
    if (QString fault = write(file, compressedData(reply).value_or(QByteArray())); !fault.isEmpty())
        return {fault, {}};
    if (QString fault = write(file + QStringLiteral(".txt"), reply); !fault.isEmpty())
        return {fault, {}};
    return {{}, report + file + u'\n' + file + QStringLiteral(".txt\n")};
}

} // namespace quarry
