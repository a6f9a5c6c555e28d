#pragma once

#include "archive/ArchiveReader.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <set>

namespace quarry::test {

inline QByteArray goldenFile(const char* name)
{
    QFile file(QStringLiteral(QUARRY_TEST_DATA "/golden/") + QLatin1String(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline QJsonObject goldenJson(const char* name)
{
    return QJsonDocument::fromJson(goldenFile(name)).object();
}

/// What a keyed archive holds, in the JSON form of the golden files.
class ArchiveJson final {
public:
    static QJsonValue of(const QByteArray& bytes)
    {
        const auto opened = KeyedArchive::open(bytes);
        return opened.archive ? ArchiveJson(opened.archive).root() : QJsonValue(opened.reason);
    }

private:
    explicit ArchiveJson(const std::shared_ptr<const KeyedArchive>& archive) : _reader(archive) {}

    QJsonValue root()
    {
        const QJsonValue value = json(_reader.root());
        return _reader.failed() ? QJsonValue(_reader.reason()) : value;
    }

    static QJsonValue tagged(const char* tag, const QJsonValue& value)
    {
        return QJsonObject{{QLatin1String(tag), value}};
    }

    QJsonValue json(const ArchivedValue& value)
    {
        if (value.isNull())
            return QJsonValue::Null;
        if (const auto text = _reader.text(value))
            return text->toString();
        if (const auto number = _reader.number(value))
            return json(*number);
        if (const auto date = _reader.date(value))
            return tagged("#date", QString::number(*date, 'f', 6));
        if (const auto data = _reader.data(value))
            return tagged("#data", QString::fromLatin1(QByteArray(data->data(), qsizetype(data->size())).toHex()));
        if (const auto url = _reader.url(value))
            return json(*url);
        if (const auto list = _reader.list(value)) {
            QJsonArray array;
            for (std::uint64_t i = 0; i < list->count(); ++i)
                array.append(json(_reader.value(list->at(i))));
            return array;
        }
        if (const auto pairs = _reader.pairs(value)) {
            QJsonObject object;
            for (std::uint64_t i = 0; i < pairs->keys.count(); ++i)
                object.insert(json(_reader.value(pairs->keys.at(i))).toString(),
                              json(_reader.value(pairs->values.at(i))));
            return object;
        }
        return object(value);
    }

    static QJsonValue json(const ArchivedNumber& number)
    {
        switch (number.kind) {
        case ArchivedNumber::Kind::Boolean:
            return number.integer != 0;
        case ArchivedNumber::Kind::Integer:
            return qint64(number.integer);
        default:
            return tagged("#real", QString::number(number.real, 'g', 17));
        }
    }

    QJsonValue json(const ArchivedUrl& url)
    {
        const QString relative = url.relative.toString();
        if (url.base.isNull())
            return tagged("#url", relative);
        const QString base = json(url.base)[QLatin1String("#url")].toString();
        // Enough for the golden file, whose base ends in a file name.
        return QJsonObject{{QStringLiteral("#base"), base},
                           {QStringLiteral("#relative"), relative},
                           {QStringLiteral("#url"), base.left(base.lastIndexOf(u'/') + 1) + relative}};
    }

    QJsonValue object(const ArchivedValue& value)
    {
        if (!_seen.insert(value.object).second)
            return tagged("#ref", qint64(value.object));
        const QString name =
            _reader.text(_reader.entry(_reader.entry(value, QLatin1String("$class")), QLatin1String("$classname")))
                .value_or(StoredText())
                .toString();
        QJsonObject entries;
        const std::uint32_t holder = std::exchange(_holder, value.object);
        for (std::uint64_t i = 0; i < value.item.count; ++i) {
            const QString key = _reader.plist().item(_reader.plist().key(value.item, i)).text().toString();
            const ArchivedValue entry = _reader.value(_reader.plist().value(value.item, i));
            if (key == QLatin1String("queryParentUUIDKey"))
                entries.insert(key, parent(entry, holder));
            else if (entry.slot == entry.object)
                entries.insert(key, tagged("#native", json(entry)));
            else if (key != QLatin1String("$class"))
                entries.insert(key, json(entry));
        }
        _holder = holder;
        return QJsonObject{{QStringLiteral("#class"), name}, {QStringLiteral("entries"), entries}};
    }

    QJsonValue parent(const ArchivedValue& value, std::uint32_t holder)
    {
        return QJsonObject{{QStringLiteral("#parent"), json(_reader.entry(value, QLatin1String("queryUUIDKey")))},
                           {QStringLiteral("#isTheFolderHoldingThisNode"), value.object == holder}};
    }

    ArchiveReader _reader;
    std::set<std::uint32_t> _seen;
    std::uint32_t _holder = KeyedArchive::NoObject;
};

/// Where two JSON values first differ, for the message of a failed test; empty when they are equal.
inline QString difference(const QJsonValue& a, const QJsonValue& b, const QString& path = QString())
{
    if (a == b)
        return {};
    if (a.isObject() && b.isObject()) {
        QStringList keys = a.toObject().keys() + b.toObject().keys();
        for (const QString& key : std::as_const(keys)) {
            QString inner = difference(a[key], b[key], path + u'/' + key);
            if (!inner.isEmpty())
                return inner;
        }
    }
    if (a.isArray() && b.isArray() && a.toArray().size() == b.toArray().size()) {
        for (qsizetype i = 0; i < a.toArray().size(); ++i) {
            QString inner = difference(a[i], b[i], path + u'/' + QString::number(i));
            if (!inner.isEmpty())
                return inner;
        }
    }
    const auto shown = [](const QJsonValue& value) {
        return QString::fromUtf8(QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact)).left(400);
    };
    return path + QStringLiteral(": ") + shown(a) + QStringLiteral(" / ") + shown(b);
}

} // namespace quarry::test
