#include "archive/XmlPlist.h"

#include "archive/PlistWriter.h"
#include "platform/Date.h"

#include <QDateTime>
#include <QXmlStreamReader>
#include <QtEndian>

#include <optional>
#include <vector>

namespace quarry {

namespace {

using Object = PlistWriter::Object;

/// An array or a dictionary that is still open.
struct Frame {
    bool isDictionary = false;
    bool hasKey = false; ///< A key was read and its value was not.
    std::vector<Object> keys;
    std::vector<Object> values;
    bool lastKeyIsUid = false;
    std::optional<std::int64_t> lastInteger;
};

class Converter final {
public:
    explicit Converter(const QByteArray& xml)
        : _xml(xml), _writer(_sink, static_cast<std::uint64_t>(xml.size()) / 4 + 16)
    {
        // Every element takes more than four characters, so the writer was promised enough.
        _xml.setEntityExpansionLimit(0);
    }

    QByteArray convert(QString& reason)
    {
        while (!_xml.atEnd() && _problem.isEmpty()) {
            const auto token = _xml.readNext();
            if (token == QXmlStreamReader::StartElement)
                startElement();
            else if (token == QXmlStreamReader::EndElement)
                endElement();
        }
        if (_problem.isEmpty() && _xml.hasError())
            _problem = QStringLiteral("not a property list: %1").arg(_xml.errorString());
        if (_problem.isEmpty() && !_root)
            _problem = QStringLiteral("not a property list");
        if (_problem.isEmpty() && !_writer.finish(*_root))
            _problem = QStringLiteral("the property list is too large");
        reason = _problem;
        return _problem.isEmpty() ? _sink.bytes : QByteArray();
    }

private:
    static constexpr std::size_t MaximumDepth = 512;

    void fail() { _problem = QStringLiteral("not a property list: line %1 makes no sense").arg(_xml.lineNumber()); }
    QString elementText() { return _xml.readElementText(QXmlStreamReader::ErrorOnUnexpectedElement); }

    void startElement()
    {
        const QStringView name = _xml.name();
        if (name == QLatin1String("plist")) {
            if (!_frames.empty() || _root)
                fail();
        } else if (name == QLatin1String("dict") || name == QLatin1String("array")) {
            _frames.push_back({});
            _frames.back().isDictionary = name == QLatin1String("dict");
            if (_frames.size() > MaximumDepth)
                fail();
        } else if (name == QLatin1String("key")) {
            key();
        } else {
            scalar(name.toString());
        }
    }

    void endElement()
    {
        if (_xml.name() == QLatin1String("plist") || _frames.empty())
            return;
        const Frame frame = std::move(_frames.back());
        _frames.pop_back();
        if (frame.hasKey)
            return fail();
        if (!frame.isDictionary)
            return add(_writer.array(frame.values));
        const bool isUid = frame.keys.size() == 1 && frame.lastKeyIsUid && frame.lastInteger;
        if (isUid && *frame.lastInteger >= 0 && *frame.lastInteger < 0xffffffff)
            return add(_writer.uid(static_cast<std::uint32_t>(*frame.lastInteger)));
        add(_writer.dictionary(frame.keys, frame.values));
    }

    void key()
    {
        if (_frames.empty() || !_frames.back().isDictionary || _frames.back().hasKey)
            return fail();
        const QString text = elementText();
        Frame& frame = _frames.back();
        frame.hasKey = true;
        frame.lastKeyIsUid = text == QLatin1String("CF$UID");
        frame.keys.push_back(textObject(text));
    }

    void scalar(const QString& name)
    {
        const QString text = elementText();
        if (name == QLatin1String("string"))
            return add(textObject(text));
        if (name == QLatin1String("integer"))
            return integer(text.trimmed());
        if (name == QLatin1String("real"))
            return real(text.trimmed());
        if (name == QLatin1String("date"))
            return date(text.trimmed());
        if (name == QLatin1String("true") || name == QLatin1String("false"))
            return add(_writer.boolean(name == QLatin1String("true")));
        if (name != QLatin1String("data"))
            return fail();
        const QByteArray bytes = QByteArray::fromBase64(text.toLatin1());
        add(_writer.data({bytes.constData(), static_cast<std::size_t>(bytes.size())}));
    }

    void integer(const QString& text)
    {
        bool ok = false;
        const bool isHexadecimal = text.startsWith(QLatin1String("0x"));
        const qint64 value = isHexadecimal ? text.toLongLong(&ok, 16) : text.toLongLong(&ok, 10);
        if (!ok)
            return wideInteger(text);
        if (!_frames.empty())
            _frames.back().lastInteger = value;
        add(_writer.integer(value));
    }

    /// One that only fits without a sign: the binary form has 16 bytes for it.
    void wideInteger(const QString& text)
    {
        bool ok = false;
        const qulonglong value = text.toULongLong(&ok, 0);
        if (!ok)
            return fail();
        char bytes[16] = {};
        qToBigEndian<quint64>(value, bytes + 8);
        add(_writer.number(0x14, {bytes, sizeof(bytes)}));
    }

    void real(const QString& text)
    {
        bool ok = false;
        const double value = text.toDouble(&ok);
        ok ? add(_writer.real(value)) : fail();
    }

    void date(const QString& text)
    {
        const QDateTime date = QDateTime::fromString(text, Qt::ISODateWithMs);
        if (!date.isValid())
            return fail();
        const auto milliseconds = static_cast<double>(date.toMSecsSinceEpoch());
        add(_writer.date(Date::fromUnixSeconds(milliseconds / 1000.0).secondsSinceReference()));
    }

    /// Equal texts once: the keys of an XML archive repeat for every object.
    Object textObject(const QString& text)
    {
        constexpr qsizetype LongestShared = 64;
        constexpr qsizetype MostShared = 100000;
        const auto known = _texts.constFind(text);
        if (known != _texts.constEnd())
            return *known;
        const Object object = _writer.text(StoredText::copyOf(text));
        if (text.size() <= LongestShared && _texts.size() < MostShared)
            _texts.insert(text, object);
        return object;
    }

    void add(Object object)
    {
        if (_frames.empty()) {
            _root ? fail() : void(_root = object);
            return;
        }
        Frame& frame = _frames.back();
        if (frame.isDictionary && !frame.hasKey)
            return fail();
        frame.hasKey = false;
        frame.values.push_back(object);
    }

    QXmlStreamReader _xml;
    MemorySink _sink;
    PlistWriter _writer;
    std::vector<Frame> _frames;
    QHash<QString, Object> _texts;
    std::optional<Object> _root;
    QString _problem;
};

} // namespace

QByteArray binaryFromXml(const QByteArray& xml, QString& reason)
{
    // Looked at first, so that something else is not called broken XML.
    const QByteArray start = xml.left(4096).trimmed();
    if (!start.startsWith('<') && !start.startsWith("\xef\xbb\xbf<") && !start.startsWith("\xff\xfe") &&
        !start.startsWith("\xfe\xff")) {
        reason = QStringLiteral("not a property list");
        return {};
    }
    return Converter(xml).convert(reason);
}

} // namespace quarry
