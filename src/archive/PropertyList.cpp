#include "archive/PropertyList.h"

#include <QDateTime>
#include <QXmlStreamWriter>

#include <plist/plist.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <memory>

namespace quarry {

namespace {

/// Small files only; more is a mistake or an attack.
constexpr qsizetype MaximumSize = qsizetype(256) << 20;
constexpr int MaximumDepth = 256;

struct FreeMemory {
    void operator()(void* memory) const { std::free(memory); }
};
using CText = std::unique_ptr<char, FreeMemory>;

PlistValue valueOf(plist_t node, int depth);

PlistValue listOf(plist_t node, int depth)
{
    PlistValue::List list;
    plist_array_iter iterator = nullptr;
    plist_array_new_iter(node, &iterator);
    const std::unique_ptr<void, FreeMemory> owner(iterator);
    for (plist_t item = nullptr; plist_array_next_item(node, iterator, &item), item;)
        list.append(valueOf(item, depth + 1));
    return list;
}

PlistValue dictionaryOf(plist_t node, int depth)
{
    PlistValue::Dictionary dictionary;
    plist_dict_iter iterator = nullptr;
    plist_dict_new_iter(node, &iterator);
    const std::unique_ptr<void, FreeMemory> owner(iterator);
    for (;;) {
        char* key = nullptr;
        plist_t item = nullptr;
        plist_dict_next_item(node, iterator, &key, &item);
        const CText keyOwner(key);
        if (!item)
            return dictionary;
        dictionary.insert(QString::fromUtf8(key), valueOf(item, depth + 1));
    }
}

PlistValue textOf(plist_t node)
{
    std::uint64_t length = 0;
    const char* text = plist_get_string_ptr(node, &length);
    return text ? QString::fromUtf8(text, static_cast<qsizetype>(length)) : QStringLiteral("");
}

PlistValue dataOf(plist_t node)
{
    std::uint64_t length = 0;
    const char* data = plist_get_data_ptr(node, &length);
    return data ? QByteArray(data, static_cast<qsizetype>(length)) : QByteArray("");
}

PlistValue dateOf(plist_t node)
{
    std::int32_t seconds = 0;
    std::int32_t microseconds = 0;
    plist_get_date_val(node, &seconds, &microseconds);
    return Date(double(seconds) + double(microseconds) / 1e6);
}

template <typename T>
T scalarOf(plist_t node, void (*get)(plist_t, T*))
{
    T value{};
    get(node, &value);
    return value;
}

PlistValue valueOf(plist_t node, int depth)
{
    if (depth > MaximumDepth)
        return {};
    switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN:
        return scalarOf(node, plist_get_bool_val) != 0;
    case PLIST_UINT:
        return qint64(scalarOf(node, plist_get_uint_val));
    case PLIST_REAL:
        return scalarOf(node, plist_get_real_val);
    case PLIST_STRING:
    case PLIST_KEY:
        return textOf(node);
    case PLIST_ARRAY:
        return listOf(node, depth);
    case PLIST_DICT:
        return dictionaryOf(node, depth);
    case PLIST_DATE:
        return dateOf(node);
    case PLIST_DATA:
        return dataOf(node);
    case PLIST_UID:
        return PlistValue::Uid{scalarOf(node, plist_get_uid_val)};
    default:
        return {};
    }
}

/// Written here and not by the library, whose integers have no sign.
class XmlForm final {
public:
    explicit XmlForm(QXmlStreamWriter& xml) : _xml(xml) {}

    void write(const PlistValue& value)
    {
        std::visit([this](const auto& v) { element(v); }, value.variant());
    }

private:
    void element(std::monostate) {}
    void element(PlistValue::Uid) {}
    void element(bool value) { _xml.writeEmptyElement(value ? QStringLiteral("true") : QStringLiteral("false")); }
    void element(qint64 value) { _xml.writeTextElement(QStringLiteral("integer"), QString::number(value)); }
    void element(double value)
    {
        _xml.writeTextElement(QStringLiteral("real"),
                              QString::number(value, 'g', std::numeric_limits<double>::max_digits10));
    }
    void element(Date value) { _xml.writeTextElement(QStringLiteral("date"), value.isoText()); }
    void element(const QString& value) { _xml.writeTextElement(QStringLiteral("string"), value); }
    void element(const QByteArray& value)
    {
        _xml.writeTextElement(QStringLiteral("data"), QString::fromLatin1(value.toBase64()));
    }
    void element(const PlistValue::List& list)
    {
        _xml.writeStartElement(QStringLiteral("array"));
        for (const PlistValue& value : list)
            write(value);
        _xml.writeEndElement();
    }
    void element(const PlistValue::Dictionary& dictionary)
    {
        _xml.writeStartElement(QStringLiteral("dict"));
        for (auto entry = dictionary.cbegin(); entry != dictionary.cend(); ++entry) {
            if (isWritten(entry.value())) {
                _xml.writeTextElement(QStringLiteral("key"), entry.key());
                write(entry.value());
            }
        }
        _xml.writeEndElement();
    }
    static bool isWritten(const PlistValue& value)
    {
        return !value.isNull() && !std::holds_alternative<PlistValue::Uid>(value.variant());
    }

    QXmlStreamWriter& _xml;
};

} // namespace

std::optional<bool> PlistValue::boolean() const
{
    if (const bool* value = std::get_if<bool>(&_value))
        return *value;
    const std::optional<double> number = real();
    return number ? std::optional(*number != 0.0) : std::nullopt;
}

std::optional<qint64> PlistValue::integer() const
{
    if (const qint64* value = std::get_if<qint64>(&_value))
        return *value;
    if (const bool* value = std::get_if<bool>(&_value))
        return *value ? 1 : 0;
    const double* value = std::get_if<double>(&_value);
    constexpr double Limit = 9223372036854774784.0; // The greatest double below 2^63.
    if (!value || !(std::abs(*value) <= Limit))
        return std::nullopt;
    return static_cast<qint64>(*value);
}

std::optional<double> PlistValue::real() const
{
    if (const double* value = std::get_if<double>(&_value))
        return *value;
    if (const qint64* value = std::get_if<qint64>(&_value))
        return static_cast<double>(*value);
    const bool* value = std::get_if<bool>(&_value);
    return value ? std::optional(*value ? 1.0 : 0.0) : std::nullopt;
}

PlistValue PlistValue::operator[](const QString& key) const
{
    const Dictionary* dictionary = std::get_if<Dictionary>(&_value);
    return dictionary ? dictionary->value(key) : PlistValue();
}

std::optional<PlistValue> readPropertyList(const QByteArray& bytes, QString* reason)
{
    plist_t root = nullptr;
    if (bytes.size() <= MaximumSize)
        plist_from_memory(bytes.constData(), static_cast<std::uint32_t>(bytes.size()), &root);
    const std::unique_ptr<void, void (*)(void*)> owner(root, plist_free);
    if (!root) {
        if (reason)
            *reason = QStringLiteral("not a readable property list");
        return std::nullopt;
    }
    return valueOf(root, 0);
}

QByteArray writeXmlPropertyList(const PlistValue& value)
{
    QByteArray bytes;
    QXmlStreamWriter xml(&bytes);
    xml.setAutoFormatting(true);
    xml.setAutoFormattingIndent(-1);
    xml.writeStartDocument();
    xml.writeStartElement(QStringLiteral("plist"));
    xml.writeAttribute(QStringLiteral("version"), QStringLiteral("1.0"));
    XmlForm(xml).write(value);
    xml.writeEndDocument();
    return xml.hasError() ? QByteArray() : bytes;
}

} // namespace quarry
