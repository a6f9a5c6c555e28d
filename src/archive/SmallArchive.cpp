#include "archive/SmallArchive.h"

#include "archive/ArchiveReader.h"
#include "archive/KeyedArchiver.h"

namespace quarry {

namespace {

using Slot = KeyedArchiver::Slot;

std::uint64_t countValues(const PlistValue& value)
{
    std::uint64_t count = 1;
    if (const auto list = value.list()) {
        for (const PlistValue& element : *list)
            count += countValues(element);
    } else if (const auto dictionary = value.dictionary()) {
        for (const PlistValue& element : *dictionary)
            count += 1 + countValues(element);
    }
    return count;
}

/// Adds a plain value, what it holds before it.
class ValueWriter final {
public:
    explicit ValueWriter(KeyedArchiver& archiver) : _archiver(archiver) {}

    Slot write(const PlistValue& value)
    {
        return std::visit([this](const auto& v) { return slot(v); }, value.variant());
    }
    /// The root object, whose number comes first.
    Slot writeRoot(const PlistValue& value)
    {
        const auto* list = std::get_if<PlistValue::List>(&value.variant());
        const auto* dictionary = std::get_if<PlistValue::Dictionary>(&value.variant());
        if (!list && !dictionary)
            return write(value);
        const Slot root = _archiver.reserve();
        if (list)
            _archiver.placeList(root, elements(*list));
        else
            _archiver.placeDictionary(root, keys(*dictionary), elements(*dictionary));
        return root;
    }

private:
    Slot slot(std::monostate) { return _archiver.null(); }
    Slot slot(bool value) { return _archiver.boolean(value); }
    Slot slot(qint64 value) { return _archiver.integer(value); }
    Slot slot(double value) { return _archiver.real(value); }
    Slot slot(Date value) { return _archiver.date(value.secondsSinceReference()); }
    Slot slot(const QString& value) { return _archiver.text(QStringView(value)); }
    Slot slot(const QByteArray& value) { return _archiver.data(value); }
    Slot slot(PlistValue::Uid) { return _archiver.null(); }
    Slot slot(const PlistValue::List& list) { return _archiver.list(elements(list)); }
    Slot slot(const PlistValue::Dictionary& dictionary)
    {
        const std::vector<Slot> keySlots = keys(dictionary);
        return _archiver.dictionary(keySlots, elements(dictionary));
    }

    std::vector<Slot> keys(const PlistValue::Dictionary& dictionary)
    {
        std::vector<Slot> slots;
        for (auto entry = dictionary.cbegin(); entry != dictionary.cend(); ++entry)
            slots.push_back(_archiver.text(QStringView(entry.key())));
        return slots;
    }
    template <typename Collection>
    std::vector<Slot> elements(const Collection& collection)
    {
        std::vector<Slot> slots;
        for (const PlistValue& value : collection)
            slots.push_back(write(value));
        return slots;
    }

    KeyedArchiver& _archiver;
};

class ValueReader final {
public:
    explicit ValueReader(ArchiveReader& reader) : _reader(reader) {}

    PlistValue read(const ArchivedValue& value, int depth)
    {
        if (depth > MaximumDepth)
            _reader.fail(QStringLiteral("the archive is nested too deeply"));
        if (value.isNull() || _reader.failed())
            return {};
        if (const auto text = _reader.text(value))
            return _reader.spendBytes(text->length()) ? PlistValue(text->toString()) : PlistValue();
        if (const auto number = _reader.number(value))
            return plain(*number);
        if (const auto date = _reader.date(value))
            return Date(*date);
        if (const auto data = _reader.data(value))
            return QByteArray(data->data(), static_cast<qsizetype>(data->size()));
        if (const auto url = _reader.url(value))
            return url->relative.toString();
        if (const auto list = _reader.list(value))
            return readList(*list, depth);
        if (const auto pairs = _reader.pairs(value))
            return readDictionary(*pairs, depth);
        return {};
    }

private:
    static constexpr int MaximumDepth = 64;

    static PlistValue plain(const ArchivedNumber& number)
    {
        switch (number.kind) {
        case ArchivedNumber::Kind::Boolean:
            return number.integer != 0;
        case ArchivedNumber::Kind::Integer:
            return qint64(number.integer);
        default:
            return number.real;
        }
    }

    PlistValue readList(const SlotList& slots, int depth)
    {
        PlistValue::List list;
        if (!_reader.spend(slots.count()))
            return {};
        for (std::uint64_t i = 0; i < slots.count(); ++i)
            list.append(read(_reader.value(slots.at(i)), depth + 1));
        return list;
    }

    PlistValue readDictionary(const SlotPairs& pairs, int depth)
    {
        PlistValue::Dictionary dictionary;
        if (!_reader.spend(pairs.keys.count()))
            return {};
        for (std::uint64_t i = 0; i < pairs.keys.count(); ++i) {
            const auto key = _reader.text(_reader.value(pairs.keys.at(i)));
            if (key && _reader.spendBytes(key->length()))
                dictionary.insert(key->toString(), read(_reader.value(pairs.values.at(i)), depth + 1));
        }
        return dictionary;
    }

    ArchiveReader& _reader;
};

} // namespace

QByteArray archivedData(const PlistValue& root)
{
    MemorySink sink;
    KeyedArchiver archiver(sink, KeyedArchiver::ObjectsPerArchive + KeyedArchiver::ObjectsPerValue * countValues(root));
    const Slot slot = ValueWriter(archiver).writeRoot(root);
    return archiver.finish(slot) ? sink.bytes : QByteArray();
}

std::optional<PlistValue> unarchivedValue(const QByteArray& bytes, QString* reason)
{
    KeyedArchive::Opened opened = KeyedArchive::open(bytes);
    if (opened.archive) {
        ArchiveReader reader(opened.archive);
        PlistValue value = ValueReader(reader).read(reader.root(), 0);
        if (!reader.failed())
            return value;
        opened.reason = reader.reason();
    }
    if (reason)
        *reason = opened.reason;
    return std::nullopt;
}

} // namespace quarry
