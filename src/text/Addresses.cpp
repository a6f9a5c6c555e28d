#include "text/Addresses.h"

#include "text/Url.h"

#include <algorithm>

namespace quarry {

QString baseURL(const QString& text)
{
    const std::optional<Url> url = Url::fromText(text);
    return url && !url->host().isEmpty() ? url->host().toString() : text;
}

QString stringByDeletingLastURLComponent(const QString& text)
{
    const qsizetype marker = text.indexOf(u"://");
    const qsizetype siteSlash = marker < 0 ? 0 : marker + 2;
    const QStringView whole = QStringView(text).chopped(text.endsWith(u'/') ? 1 : 0);
    const qsizetype slash = whole.lastIndexOf(u'/');
    return slash > siteSlash ? text.left(slash) : text;
}

QString stringByAppendingURLComponent(const QString& text, QStringView component)
{
    QString result = text;
    if (!result.isEmpty() && !result.endsWith(u'/'))
        result += u'/';
    result += component.mid(component.startsWith(u'/') ? 1 : 0);
    return result;
}

QString convertStringToValidPath(const QString& text)
{
    QString result = text;
    std::replace_if(
        result.begin(), result.end(), [](QChar c) { return c == u'.' || c == u'/' || c == u'?' || c == u'*'; },
        QChar(u'_'));
    return result;
}

void fixupRelativeImgTags(QString& text, const QString& baseAddress)
{
    constexpr QStringView image = u"<img";
    constexpr QStringView source = u"src=\"";
    const Url base = Url::fromText(baseAddress).value_or(Url());
    QString result;
    qsizetype done = 0; // What stands before it is in the result.
    for (qsizetype at = text.indexOf(image); at >= 0; at = text.indexOf(image, done)) {
        const qsizetype marker = text.indexOf(source, at);
        const qsizetype begin = marker + source.size();
        const qsizetype end = marker < 0 ? -1 : text.indexOf(u'"', begin);
        if (end < 0)
            break; // No image further on can have a whole value either.
        const QString value = text.mid(begin, end - begin);
        const std::optional<Url> absolute = Url::resolved(base, value);
        result += QStringView(text).mid(done, begin - done);
        result += value.startsWith(u"http://") || !absolute ? value : absolute->absoluteString();
        done = end;
    }
    if (done > 0)
        text = result.append(QStringView(text).mid(done));
}

} // namespace quarry
