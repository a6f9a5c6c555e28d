#include "exchange/PlainText.h"

namespace quarry {

bool isBeyondXml(QStringView text, qsizetype at)
{
    const QChar c = text.at(at);
    if (c.isHighSurrogate())
        return at + 1 >= text.size() || !text.at(at + 1).isLowSurrogate();
    if (c.isLowSurrogate())
        return at == 0 || !text.at(at - 1).isHighSurrogate();
    return (c < u' ' && c != u'\t' && c != u'\n' && c != u'\r') || c >= QChar(0xfffe);
}

QString plainText(QString text)
{
    // A unit replaced could look like a broken pair to its neighbour, were it looked at in the copy.
    const QString original = text;
    for (qsizetype i = 0; i < original.size(); ++i) {
        if (isBeyondXml(original, i))
            text[i] = QChar::ReplacementCharacter;
    }
    return text;
}

} // namespace quarry
