#include "platform/DesktopEntry.h"

namespace quarry {

namespace {

QString unescaped(const QString& text)
{
    QString result;
    result.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] != u'\\' || i + 1 == text.size()) {
            result += text[i];
            continue;
        }
        const QChar next = text[++i];
        switch (next.unicode()) {
        case 's':
            result += u' ';
            break;
        case 'n':
            result += u'\n';
            break;
        case 't':
            result += u'\t';
            break;
        case 'r':
            result += u'\r';
            break;
        case '\\':
            result += u'\\';
            break;
        default:
            result += u'\\', result += next; // none of the format's; lists have more
        }
    }
    return result;
}

QString escaped(QString text)
{
    text.replace(u'\\', QLatin1String("\\\\"));
    text.replace(u'\n', QLatin1String("\\n"));
    text.replace(u'\t', QLatin1String("\\t"));
    text.replace(u'\r', QLatin1String("\\r"));
    if (text.startsWith(u' '))
        text.replace(0, 1, QLatin1String("\\s"));
    return text;
}

/// What a backslash keeps from its meaning between quotes.
bool isSpecialInQuotes(QChar character)
{
    return character == u'"' || character == u'`' || character == u'$' || character == u'\\';
}

/// Reads the words of an "Exec" value one after the other.
class ExecReader final {
public:
    explicit ExecReader(const QString& text) : _text(text) {}

    QStringList words()
    {
        QStringList found;
        for (skipBlanks(); _at < _text.size(); skipBlanks()) {
            QString word;
            const bool isWord = readWord(word);
            if (_isBroken)
                return {};
            if (isWord)
                found += word;
        }
        return found;
    }

private:
    void skipBlanks()
    {
        while (_at < _text.size() && _text[_at].isSpace())
            ++_at;
    }

    /// False for a word that was nothing but a field code.
    bool readWord(QString& word)
    {
        bool isWord = false;
        while (_at < _text.size() && !_text[_at].isSpace()) {
            const QChar character = _text[_at++];
            if (character == u'"') {
                readQuoted(word);
                isWord = true;
            } else if (character == u'%') {
                isWord |= readFieldCode(word);
            } else {
                word += character;
                isWord = true;
            }
        }
        return isWord;
    }

    void readQuoted(QString& word)
    {
        for (; _at < _text.size(); ++_at) {
            QChar character = _text[_at];
            if (character == u'"') {
                ++_at;
                return;
            }
            if (character == u'\\' && _at + 1 < _text.size() && isSpecialInQuotes(_text[_at + 1]))
                character = _text[++_at];
            else if (character == u'%' && _at + 1 < _text.size() && _text[_at + 1] == u'%')
                ++_at;
            word += character;
        }
        _isBroken = true;
    }

    bool readFieldCode(QString& word)
    {
        if (_at < _text.size() && _text[_at++] == u'%') {
            word += u'%';
            return true;
        }
        return false;
    }

    const QString& _text;
    qsizetype _at = 0;
    bool _isBroken = false;
};

} // namespace

QMap<QString, QString> readDesktopEntry(const QByteArray& bytes)
{
    QMap<QString, QString> values;
    bool isInEntry = false;
    for (const QString& rawLine : QString::fromUtf8(bytes).split(u'\n')) {
        const QString line = rawLine.trimmed();
        if (line.startsWith(u'[')) {
            isInEntry = line == QLatin1String("[Desktop Entry]");
            continue;
        }
        const qsizetype equals = line.indexOf(u'=');
        if (isInEntry && equals > 0 && !line.startsWith(u'#'))
            values.insert(line.left(equals).trimmed(), unescaped(line.mid(equals + 1).trimmed()));
    }
    return values;
}

QByteArray writeDesktopEntry(const QList<std::pair<QString, QString>>& values)
{
    QString text = QStringLiteral("[Desktop Entry]\n");
    for (const auto& [key, value] : values)
        text += key + u'=' + escaped(value) + u'\n';
    return text.toUtf8();
}

QString execValue(const QStringList& command)
{
    QStringList words;
    for (const QString& argument : command) {
        QString word;
        for (const QChar character : argument) {
            if (isSpecialInQuotes(character))
                word += u'\\';
            else if (character == u'%')
                word += u'%';
            word += character;
        }
        words += u'"' + word + u'"';
    }
    return words.join(u' ');
}

QStringList commandOfExecValue(const QString& value)
{
    return ExecReader(value).words();
}

} // namespace quarry
