#pragma once

#include "platform/Date.h"

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>

#include <cstdint>
#include <optional>
#include <variant>

namespace quarry {

/// A value of a property list: text, number, date, data, list, dictionary. A plain, implicitly shared value.
///
/// For small files (schedule, preferences, string tables, page-cache files); the database has a reader of its own
/// that makes no tree.
class PlistValue final {
public:
    using List = QList<PlistValue>;
    using Dictionary = QMap<QString, PlistValue>;
    /// A number that archives use to refer to their objects.
    struct Uid {
        std::uint64_t value = 0;
        friend bool operator==(Uid, Uid) = default;
    };

    /// The null value, which XML files do not have.
    PlistValue() = default;
    PlistValue(bool value) : _value(value) {}
    PlistValue(int value) : _value(qint64(value)) {}
    PlistValue(qint64 value) : _value(value) {}
    PlistValue(double value) : _value(value) {}
    PlistValue(Date value) : _value(value) {}
    PlistValue(const QString& value) : _value(value) {}
    PlistValue(const QByteArray& value) : _value(value) {}
    PlistValue(const List& value) : _value(value) {}
    PlistValue(const Dictionary& value) : _value(value) {}
    PlistValue(Uid value) : _value(value) {}
    PlistValue(const char*) = delete; ///< Would quietly become a boolean.
    PlistValue(const void*) = delete;

    [[nodiscard]] bool isNull() const { return std::holds_alternative<std::monostate>(_value); }

    // None when the value is of another type; numbers and booleans stand in for each other.
    [[nodiscard]] std::optional<QString> text() const { return as<QString>(); }
    [[nodiscard]] std::optional<QByteArray> data() const { return as<QByteArray>(); }
    [[nodiscard]] std::optional<Date> date() const { return as<Date>(); }
    [[nodiscard]] std::optional<List> list() const { return as<List>(); }
    [[nodiscard]] std::optional<Dictionary> dictionary() const { return as<Dictionary>(); }
    [[nodiscard]] std::optional<bool> boolean() const;
    /// A real is cut to its whole part; none when that does not fit.
    [[nodiscard]] std::optional<qint64> integer() const;
    [[nodiscard]] std::optional<double> real() const;

    /// The value of a key; null when this is no dictionary or has no such key.
    [[nodiscard]] PlistValue operator[](const QString& key) const;

    using Variant =
        std::variant<std::monostate, bool, qint64, double, Date, QString, QByteArray, List, Dictionary, Uid>;
    [[nodiscard]] const Variant& variant() const { return _value; }
    /// Same type and value.
    friend bool operator==(const PlistValue&, const PlistValue&) = default;

private:
    template <typename T>
    [[nodiscard]] std::optional<T> as() const
    {
        const T* value = std::get_if<T>(&_value);
        return value ? std::optional(*value) : std::nullopt;
    }

    Variant _value;
};

/// Reads a property list, XML or binary. None, and a reason, for anything else.
[[nodiscard]] std::optional<PlistValue> readPropertyList(const QByteArray& bytes, QString* reason = nullptr);

/// The XML form, keys sorted. Dates keep whole seconds; null values and UIDs, which the form does not have, are
/// left out. Empty when a text holds a character that the form cannot.
[[nodiscard]] QByteArray writeXmlPropertyList(const PlistValue& value);

} // namespace quarry
