#include "text/Entities.h"

#include "text/Data.h"
#include "text/FoldedSearch.h"
#include "text/Lines.h"
#include "text/PercentEscapes.h"
#include "text/UnitSearch.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace quarry {

namespace {

struct Entity {
    std::string_view name;
    char16_t character;
};

constexpr char16_t threeFullStops = 0xFFFF; // Marks the one entity that stands for more than a character.

constexpr auto byName = [](const Entity& a, const Entity& b) { return a.name < b.name; };

/// Two rows of Latin-1 are missing (U+00AD, U+00C2), the space is a plain one, and the sigmas are not the Greek
/// letters: texts stored with these replacements are compared with new ones, so the table stays as it is.
constexpr auto entityTable = [] {
    std::array entities = {
        Entity{"lt", u'<'},     Entity{"gt", u'>'},     Entity{"quot", u'"'},    Entity{"amp", u'&'},
        Entity{"rsquo", u'\''}, Entity{"lsquo", u'\''}, Entity{"apos", u'\''},   Entity{"hellip", threeFullStops},
        Entity{"nbsp", u' '},   Entity{"ndash", u'-'},  Entity{"iexcl", 0xA1},   Entity{"cent", 0xA2},
        Entity{"pound", 0xA3},  Entity{"curren", 0xA4}, Entity{"yen", 0xA5},     Entity{"brvbar", 0xA6},
        Entity{"sect", 0xA7},   Entity{"uml", 0xA8},    Entity{"copy", 0xA9},    Entity{"ordf", 0xAA},
        Entity{"laquo", 0xAB},  Entity{"not", 0xAC},    Entity{"reg", 0xAE},     Entity{"macr", 0xAF},
        Entity{"deg", 0xB0},    Entity{"plusmn", 0xB1}, Entity{"sup2", 0xB2},    Entity{"sup3", 0xB3},
        Entity{"acute", 0xB4},  Entity{"micro", 0xB5},  Entity{"para", 0xB6},    Entity{"middot", 0xB7},
        Entity{"cedil", 0xB8},  Entity{"sup1", 0xB9},   Entity{"ordm", 0xBA},    Entity{"raquo", 0xBB},
        Entity{"frac14", 0xBC}, Entity{"frac12", 0xBD}, Entity{"frac34", 0xBE},  Entity{"iquest", 0xBF},
        Entity{"Agrave", 0xC0}, Entity{"Aacute", 0xC1}, Entity{"Atilde", 0xC3},  Entity{"Auml", 0xC4},
        Entity{"Aring", 0xC5},  Entity{"AElig", 0xC6},  Entity{"Ccedil", 0xC7},  Entity{"Egrave", 0xC8},
        Entity{"Eacute", 0xC9}, Entity{"Ecirc", 0xCA},  Entity{"Euml", 0xCB},    Entity{"Igrave", 0xCC},
        Entity{"Iacute", 0xCD}, Entity{"Icirc", 0xCE},  Entity{"Iuml", 0xCF},    Entity{"ETH", 0xD0},
        Entity{"Ntilde", 0xD1}, Entity{"Ograve", 0xD2}, Entity{"Oacute", 0xD3},  Entity{"Ocirc", 0xD4},
        Entity{"Otilde", 0xD5}, Entity{"Ouml", 0xD6},   Entity{"times", 0xD7},   Entity{"Oslash", 0xD8},
        Entity{"Ugrave", 0xD9}, Entity{"Uacute", 0xDA}, Entity{"Ucirc", 0xDB},   Entity{"Uuml", 0xDC},
        Entity{"Yacute", 0xDD}, Entity{"THORN", 0xDE},  Entity{"szlig", 0xDF},   Entity{"agrave", 0xE0},
        Entity{"aacute", 0xE1}, Entity{"acirc", 0xE2},  Entity{"atilde", 0xE3},  Entity{"auml", 0xE4},
        Entity{"aring", 0xE5},  Entity{"aelig", 0xE6},  Entity{"ccedil", 0xE7},  Entity{"egrave", 0xE8},
        Entity{"eacute", 0xE9}, Entity{"ecirc", 0xEA},  Entity{"euml", 0xEB},    Entity{"igrave", 0xEC},
        Entity{"iacute", 0xED}, Entity{"icirc", 0xEE},  Entity{"iuml", 0xEF},    Entity{"eth", 0xF0},
        Entity{"ntilde", 0xF1}, Entity{"ograve", 0xF2}, Entity{"oacute", 0xF3},  Entity{"ocirc", 0xF4},
        Entity{"otilde", 0xF5}, Entity{"ouml", 0xF6},   Entity{"divide", 0xF7},  Entity{"oslash", 0xF8},
        Entity{"ugrave", 0xF9}, Entity{"uacute", 0xFA}, Entity{"ucirc", 0xFB},   Entity{"uuml", 0xFC},
        Entity{"yacute", 0xFD}, Entity{"thorn", 0xFE},  Entity{"sigma", 0x0C3C}, Entity{"Sigma", 0x0CA3},
        Entity{"bull", 0x2022}, Entity{"euro", 0x20AC},
    };
    std::sort(entities.begin(), entities.end(), byName);
    return entities;
}();

constexpr size_t longestName = 8;

const Entity* findEntity(QStringView name)
{
    std::array<char, longestName> ascii{};
    if (name.size() > static_cast<qsizetype>(longestName))
        return nullptr;
    for (size_t i = 0; i < static_cast<size_t>(name.size()); ++i) {
        const char16_t c = name[static_cast<qsizetype>(i)].unicode();
        ascii[i] = c < 0x80 ? static_cast<char>(c) : '\0';
    }
    const Entity wanted{{ascii.data(), static_cast<size_t>(name.size())}, 0};
    const auto* at = std::lower_bound(entityTable.begin(), entityTable.end(), wanted, byName);
    return at != entityTable.end() && at->name == wanted.name ? at : nullptr;
}

char16_t numericEntity(QStringView afterMark)
{
    quint64 code = 0;
    if (afterMark.startsWith(u'x')) {
        code = hexValue(afterMark.mid(1));
    } else {
        for (const QChar c : afterMark) {
            if (c < u'0' || c > u'9')
                break;
            code = code * 10 + (c.unicode() - u'0'); // Wraps; only the lowest 16 bits count.
        }
    }
    const auto cut = static_cast<char16_t>(code & 0xFFFFU);
    return cut < 33 ? u' ' : cut;
}

/// Writes what the entity stands for, which is never longer than the entity; 0 for an unknown name.
qsizetype writeEntity(QStringView name, char16_t* out)
{
    if (name.size() >= 2 && name.front() == u'#') {
        *out = numericEntity(name.mid(1));
        return 1;
    }
    const Entity* entity = findEntity(name);
    if (entity == nullptr)
        return 0;
    if (entity->character != threeFullStops) {
        *out = entity->character;
        return 1;
    }
    std::fill_n(out, 3, u'.');
    return 3;
}

/// A reference at an "&": how many units it takes, and the character it stands for. Length 0: none.
struct XmlReference {
    qsizetype length = 0;
    char32_t character = 0;
};

bool isXmlCharacter(char32_t c)
{
    return c == 0x9 || c == 0xA || c == 0xD || (c >= 0x20 && c <= 0xD7FF) || (c >= 0xE000 && c <= 0xFFFD) ||
           (c >= 0x10000 && c <= 0x10FFFF);
}

XmlReference numericXmlReference(QStringView text)
{
    const bool isHex = text.size() > 2 && text[2] == u'x';
    const unsigned base = isHex ? 16 : 10;
    char32_t code = 0;
    const qsizetype begin = isHex ? 3 : 2;
    qsizetype at = begin;
    for (; at < text.size(); ++at) {
        const int digit = hexDigitValue(text[at].unicode());
        if (digit < 0 || static_cast<unsigned>(digit) >= base)
            break;
        code = std::min<char32_t>(code * base + static_cast<unsigned>(digit), 0x110000);
    }
    if (at == begin || at == text.size() || text[at] != u';' || !isXmlCharacter(code))
        return {};
    return {at + 1, code};
}

XmlReference xmlReference(QStringView text)
{
    if (text.size() > 1 && text[1] == u'#')
        return numericXmlReference(text);
    static constexpr std::pair<QStringView, char32_t> named[] = {
        {u"&amp;", U'&'}, {u"&lt;", U'<'}, {u"&gt;", U'>'}, {u"&quot;", U'"'}, {u"&apos;", U'\''}};
    for (const auto& [entity, character] : named) {
        if (standsAt(text, 0, entity))
            return {entity.size(), character};
    }
    return {};
}

char16_t* writeCharacter(char16_t* out, char32_t c)
{
    if (!QChar::requiresSurrogates(c)) {
        *out++ = static_cast<char16_t>(c);
        return out;
    }
    *out++ = QChar::highSurrogate(c);
    *out++ = QChar::lowSurrogate(c);
    return out;
}

} // namespace

QString mapEntityToString(const QString& name)
{
    if (name.isNull())
        return {};
    std::array<char16_t, 3> out{};
    const qsizetype count = writeEntity(name, out.data());
    return count > 0 ? QStringView(out.data(), count).toString() : u'&' + name + u';';
}

QString stringByUnescapingExtendedCharacters(const QString& text)
{
    QString result = text;
    unescapeExtendedCharacters(result);
    return trim(result);
}

void unescapeExtendedCharacters(QString& text)
{
    const char16_t* const original = QStringView(text).utf16();
    const qsizetype first = findUnit(original, original + text.size(), u'&') - original;
    if (first == text.size())
        return;
    char16_t* const begin = writableUnits(text);
    const char16_t* const end = begin + text.size();
    char16_t* out = begin + first;
    const char16_t* in = out; // At an "&".
    while (in != end) {
        const char16_t* const semicolon = findUnit(in, end, u';');
        if (semicolon == end)
            break;
        const qsizetype written = writeEntity(QStringView(in + 1, semicolon), out);
        out = written > 0 ? out + written : moveUnits(out, in, semicolon + 1);
        in = findUnit(semicolon + 1, end, u'&');
        out = moveUnits(out, semicolon + 1, in);
    }
    out = moveUnits(out, in, end);
    text.truncate(out - begin);
}

QString stringByEscapingExtendedCharacters(const QString& text)
{
    const auto isExtended = [](QChar c) { return c.unicode() >= 128; };
    const auto* first = std::find_if(text.begin(), text.end(), isExtended);
    if (first == text.end())
        return text;
    QString out = text.left(first - text.begin());
    for (const QChar c : QStringView(first, text.end())) {
        if (isExtended(c))
            out += QStringLiteral("&#%1;").arg(c.unicode());
        else
            out += c;
    }
    return out;
}

void unescapeXml(QString& text)
{
    const char16_t* const original = QStringView(text).utf16();
    const qsizetype first = findUnit(original, original + text.size(), u'&') - original;
    if (first == text.size())
        return;
    char16_t* const begin = writableUnits(text);
    const char16_t* const end = begin + text.size();
    char16_t* out = begin + first;
    const char16_t* in = out; // At an "&".
    while (in != end) {
        const XmlReference reference = xmlReference(QStringView(in, end));
        if (reference.length > 0)
            out = writeCharacter(out, reference.character);
        const char16_t* const behind = in + reference.length;
        in = findUnit(std::max(behind, in + 1), end, u'&');
        out = moveUnits(out, behind, in);
    }
    text.truncate(out - begin);
}

} // namespace quarry
