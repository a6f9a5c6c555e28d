#include "updater/ReleaseNotes.h"

#include "text/Tags.h"
#include "updater/RichText.h"

namespace quarry {

namespace {

constexpr qsizetype longest = qsizetype{64} * 1024;

QString paragraphsOf(const QString& text)
{
    return QStringLiteral("<p>") + text.trimmed().toHtmlEscaped().replace(u'\n', QLatin1String("<br>")) +
           QStringLiteral("</p>");
}

bool saysNothing(const QString& html)
{
    return stringByRemovingTagOnly(html).trimmed().isEmpty();
}

} // namespace

QString releaseNotesHtml(const QByteArray& document)
{
    if (document.startsWith("{\\rtf"))
        return htmlOfRichText(document);
    const QString text = QString::fromUtf8(document);
    const bool isPage = document.trimmed().startsWith('<');
    return paragraphsOf(isPage ? stringByRemovingHTML(text) : text);
}

std::optional<QString> fetchReleaseNotes(PageLoader& loader, const Url& address)
{
    const LoadedPage page = loader.load(address.requestBytes());
    if (!page.ok() || page.bytes.size() > longest)
        return std::nullopt;
    QString html = releaseNotesHtml(page.bytes);
    return saysNothing(html) ? std::nullopt : std::optional(std::move(html));
}

} // namespace quarry
