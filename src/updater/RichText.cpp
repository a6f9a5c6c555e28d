#include "updater/RichText.h"

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

namespace quarry {

namespace {

/// What Windows-1252, which bytes without a character set of their own are in, has where Latin-1 has controls.
constexpr std::array<char16_t, 32> windowsCharacters{0x20ac, 0x81,   0x201a, 0x192,  0x201e, 0x2026, 0x2020, 0x2021,
                                                     0x2c6,  0x2030, 0x160,  0x2039, 0x152,  0x8d,   0x17d,  0x8f,
                                                     0x90,   0x2018, 0x2019, 0x201c, 0x201d, 0x2022, 0x2013, 0x2014,
                                                     0x2dc,  0x2122, 0x161,  0x203a, 0x153,  0x9d,   0x17e,  0x178};

QChar characterOf(unsigned char byte)
{
    return byte >= 0x80 && byte < 0xa0 ? QChar(windowsCharacters.at(byte - 0x80U)) : QChar(char16_t{byte});
}

bool isLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// Groups whose text is none of the document's.
bool isHiddenDestination(const QByteArray& word)
{
    static const std::array<const char*, 12> names{"fonttbl", "colortbl", "stylesheet", "info",
                                                   "pict",    "object",   "listtable",  "header",
                                                   "footer",  "fldinst",  "footnote",   "generator"};
    return std::any_of(names.begin(), names.end(), [&](const char* name) { return word == name; });
}

class RichTextReader final {
public:
    explicit RichTextReader(const QByteArray& rtf) : _rtf(rtf) {}

    QString html()
    {
        while (_at < _rtf.size())
            step();
        _style.hidden = false;
        endParagraph();
        return _html;
    }

private:
    struct Style {
        bool bold = false;
        bool italic = false;
        bool hidden = false;
        int fallback = 1; ///< Characters that stand behind a \u for readers that do not know it.
    };

    void step()
    {
        const char c = _rtf[_at++];
        if (c == '{')
            _groups.push_back(_style);
        else if (c == '}')
            closeGroup();
        else if (c == '\\')
            control();
        else if (c != '\r' && c != '\n')
            add(characterOf(static_cast<unsigned char>(c)));
    }

    void closeGroup()
    {
        if (_groups.empty())
            return;
        endRun();
        _style = _groups.back();
        _groups.pop_back();
    }

    void control()
    {
        if (_at >= _rtf.size())
            return;
        if (isLetter(_rtf[_at])) {
            word();
            return;
        }
        const char symbol = _rtf[_at++];
        if (symbol == '\'')
            addByte();
        else if (symbol == '*')
            _style.hidden = true;
        else if (symbol == '\n' || symbol == '\r')
            endParagraph();
        else if (symbol == '~')
            add(QChar(0xa0));
        else if (symbol == '\\' || symbol == '{' || symbol == '}')
            add(QLatin1Char(symbol));
    }

    /// Two hexadecimal digits.
    void addByte()
    {
        bool ok = false;
        const int byte = _rtf.mid(_at, 2).toInt(&ok, 16);
        _at = std::min(_at + 2, _rtf.size());
        if (ok)
            add(characterOf(static_cast<unsigned char>(byte)));
    }

    void word()
    {
        const qsizetype begin = _at;
        while (_at < _rtf.size() && isLetter(_rtf[_at]))
            ++_at;
        const QByteArray name = _rtf.mid(begin, _at - begin);
        const qsizetype digits = _at;
        if (_at < _rtf.size() && _rtf[_at] == '-')
            ++_at;
        while (_at < _rtf.size() && isDigit(_rtf[_at]))
            ++_at;
        bool ok = false;
        const int number = _rtf.mid(digits, _at - digits).toInt(&ok);
        if (_at < _rtf.size() && _rtf[_at] == ' ')
            ++_at;
        obey(name, ok ? std::optional(number) : std::nullopt);
    }

    void obey(const QByteArray& name, std::optional<int> number)
    {
        if (name == "b" || name == "i") {
            endRun();
            (name == "b" ? _style.bold : _style.italic) = number.value_or(1) != 0;
        } else if (name == "plain") {
            endRun();
            _style.bold = _style.italic = false;
        } else if (name == "par" || name == "sect" || name == "page") {
            endParagraph();
        } else if (name == "line") {
            endRun();
            if (!_style.hidden)
                _paragraph += QStringLiteral("<br>");
        } else if (name == "tab") {
            add(u' ');
        } else if (name == "uc") {
            _style.fallback = std::clamp(number.value_or(1), 0, 16);
        } else if (name == "u" && number) {
            add(QChar(static_cast<char16_t>(*number)));
            _skip = _style.fallback;
        } else if (const QChar sign = signOf(name); !sign.isNull()) {
            add(sign);
        } else if (isHiddenDestination(name)) {
            _style.hidden = true;
        }
    }

    static QChar signOf(const QByteArray& name)
    {
        struct Sign {
            const char* name;
            char16_t character;
        };
        static constexpr std::array<Sign, 7> signs{{{"bullet", 0x2022},
                                                    {"emdash", 0x2014},
                                                    {"endash", 0x2013},
                                                    {"lquote", 0x2018},
                                                    {"rquote", 0x2019},
                                                    {"ldblquote", 0x201c},
                                                    {"rdblquote", 0x201d}}};
        for (const Sign& sign : signs) {
            if (name == sign.name)
                return QChar(sign.character);
        }
        return {};
    }

    void add(QChar character)
    {
        if (_skip > 0)
            --_skip;
        else if (!_style.hidden && character.unicode() >= 0x20)
            _run += character;
    }

    void endRun()
    {
        _skip = 0;
        if (_run.isEmpty())
            return;
        QString text = _run.toHtmlEscaped();
        if (_style.italic)
            text = QStringLiteral("<i>") + text + QStringLiteral("</i>");
        if (_style.bold)
            text = QStringLiteral("<b>") + text + QStringLiteral("</b>");
        _paragraph += text;
        _run.clear();
    }

    void endParagraph()
    {
        if (_style.hidden)
            return;
        endRun();
        if (!_paragraph.isEmpty())
            _html += QStringLiteral("<p>") + _paragraph + QStringLiteral("</p>");
        _paragraph.clear();
    }

    const QByteArray& _rtf;
    qsizetype _at = 0;
    Style _style;
    std::vector<Style> _groups;
    QString _run;       ///< Text of one style.
    QString _paragraph; ///< HTML.
    QString _html;
    int _skip = 0;
};

} // namespace

QString htmlOfRichText(const QByteArray& rtf)
{
    return RichTextReader(rtf).html();
}

} // namespace quarry
