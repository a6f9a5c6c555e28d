#include "gateway/SearchText.h"

#include <algorithm>
#include <utility>

namespace quarry {

namespace {

/// More than any person types; keeps the index's parser within its bounds.
constexpr qsizetype maximumLength = 1000;

bool isQuote(QChar c)
{
    return c == u'"' || c == QChar(0x201C) || c == QChar(0x201D);
}

SearchText::Term nextTerm(QStringView text, qsizetype& at)
{
    SearchText::Term term;
    if (text[at] == u'-' && at + 1 < text.size() && !text[at + 1].isSpace()) {
        term.isExcluded = true;
        ++at;
    }
    term.isQuoted = isQuote(text[at]);
    if (term.isQuoted)
        ++at;
    const qsizetype begin = at;
    while (at < text.size() && !(term.isQuoted ? isQuote(text[at]) : text[at].isSpace() || isQuote(text[at])))
        ++at;
    term.text = text.mid(begin, at - begin).toString();
    if (term.isQuoted && at < text.size())
        ++at;
    return term;
}

/// The index looks at letters and digits only; a term without any would match nothing and hide the others.
bool hasWord(const QString& text)
{
    const QList<uint> characters = text.toUcs4();
    return std::any_of(characters.begin(), characters.end(), [](uint c) { return QChar::isLetterOrNumber(c); });
}

QByteArray quoted(const QString& text)
{
    return '"' + text.toUtf8().replace('\0', ' ').replace("\"", "\"\"") + '"';
}

} // namespace

SearchText SearchText::fromText(const QString& text)
{
    constexpr QLatin1String sitePrefix("site:");
    SearchText result;
    bool afterOr = false;
    const QStringView typed = QStringView(text).left(maximumLength);
    for (qsizetype at = 0; at < typed.size();) {
        if (typed[at].isSpace()) {
            ++at;
            continue;
        }
        Term term = nextTerm(typed, at);
        if (!term.isQuoted && term.text.startsWith(sitePrefix, Qt::CaseInsensitive)) {
            if (term.text.size() > sitePrefix.size())
                result.sites += term.text.mid(sitePrefix.size());
        } else if (!term.isQuoted && !term.isExcluded && term.text == QLatin1String("OR")) {
            afterOr = !result.terms.isEmpty() && !result.terms.last().isExcluded;
        } else if (hasWord(term.text)) {
            term.isAlternative = std::exchange(afterOr, false) && !term.isExcluded;
            result.terms += term;
        }
    }
    return result;
}

QByteArray SearchText::indexExpression() const
{
    QByteArray wanted;
    QByteArray excluded;
    for (const Term& term : terms) {
        if (term.isExcluded) {
            excluded += " NOT " + quoted(term.text);
            continue;
        }
        // OR binds its two neighbours more tightly than the AND between all others.
        if (term.isAlternative)
            wanted.chop(1);
        wanted += (term.isAlternative ? " OR " : wanted.isEmpty() ? "(" : " AND (") + quoted(term.text) + ')';
    }
    return wanted.isEmpty() || excluded.isEmpty() ? wanted : '(' + wanted + ')' + excluded;
}

} // namespace quarry
