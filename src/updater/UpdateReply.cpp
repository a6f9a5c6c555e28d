#include "updater/UpdateReply.h"

#include "text/Data.h"
#include "updater/RequestCoding.h"

#include <QStringList>

#include <algorithm>

namespace quarry {

namespace {

constexpr qsizetype replyLimit = qsizetype{64} * 1024;

std::optional<QByteArray> answerOf(PageLoader& loader, const QByteArray& address)
{
    LoadedPage page = loader.load(address);
    if (!page.ok() || page.bytes.size() > replyLimit)
        return std::nullopt;
    return std::move(page.bytes);
}

/// What a version or a number of the system is made of: a page of an error, or of another service, is neither.
bool isPlainField(const QString& text)
{
    constexpr qsizetype longest = 40;
    const auto isPlain = [](QChar c) { return c.unicode() < 0x80 && (c.isLetterOrNumber() || c == u'.'); };
    return !text.isEmpty() && text.size() <= longest && text.front().isDigit() &&
           std::all_of(text.begin(), text.end(), isPlain);
}

/// The table's own address, else the reply's field, which may be missing; none when it is no address.
std::optional<Url> addressOf(const StringTable& texts, const QString& key, const QStringList& fields, qsizetype index)
{
    const QString own = texts.contains(key) ? texts.text(key) : QString();
    return Url::fromText(own.isEmpty() ? fields.value(index).trimmed() : own);
}

} // namespace

QString updateRequestPayload(const ProductInfo& product, const QString& productReference, bool logging)
{
    return QStringLiteral("%1|%2|%3|%4")
        .arg(QString::number(product.osVersion), product.version, productReference,
             logging ? QStringLiteral("LOG") : QStringLiteral("NOLOG"));
}

std::optional<QByteArray> fetchUpdateReply(PageLoader& loader, const Url& request)
{
    const std::optional<QByteArray> answer = answerOf(loader, request.requestBytes());
    if (!answer)
        return std::nullopt;
    if (std::optional<QByteArray> inflated = decompressedData(*answer))
        return inflated->size() <= replyLimit ? inflated : std::nullopt;
    const QString clear = request.absoluteString() + RequestCoding::asciiToHexa(QStringLiteral("&&clear"));
    return answerOf(loader, Url::fromStored(clear).requestBytes());
}

std::optional<UpdateInfos> readUpdateReply(const QByteArray& reply, const StringTable& texts)
{
    const QStringList fields = QString::fromUtf8(reply).split(u';');
    UpdateInfos infos;
    infos.curentVersion = fields.value(0).trimmed();
    infos.osMini = fields.value(1).trimmed();
    const std::optional<Url> page =
        addressOf(texts, QStringLiteral("Updater_1.0_International product URL"), fields, 2);
    const std::optional<Url> image = addressOf(texts, QStringLiteral("Updater_1.0_International dmg URL"), fields, 3);
    if (!isPlainField(infos.curentVersion) || !isPlainField(infos.osMini) || !page || !image)
        return std::nullopt;
    infos.productDownloadUrl = *page;
    infos.fileUrl = *image;
    return infos;
}

} // namespace quarry
