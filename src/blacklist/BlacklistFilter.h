#pragma once

#include "archive/OpaqueObject.h"
#include "blacklist/BlacklistRule.h"

#include <QList>

#include <memory>

namespace quarry {

class BlacklistFilter;
/// Two rules are equal when they are the same object.
using BlacklistFilterPtr = std::shared_ptr<BlacklistFilter>;

/// One rule of a list, with what its stored form holds beyond the rule. Used by one thread at a time.
class BlacklistFilter final {
public:
    /// No rule, inactive, ignoring case, of type 0: catches nothing.
    BlacklistFilter() = default;
    BlacklistFilter(const BlacklistFilter&) = delete;
    BlacklistFilter& operator=(const BlacklistFilter&) = delete;

    [[nodiscard]] static BlacklistFilterPtr initWithRule(const std::optional<QString>& rule, qint64 type, bool state,
                                                         bool caseSensitive);
    /// A blank rule: nothing is copied.
    [[nodiscard]] BlacklistFilterPtr copy() const { return std::make_shared<BlacklistFilter>(); }

    [[nodiscard]] const std::optional<QString>& rule() const { return _fields.rule; }
    [[nodiscard]] qint64 type() const { return _fields.type; }
    [[nodiscard]] bool state() const { return _fields.state; }
    [[nodiscard]] bool isCaseSensitive() const { return _fields.caseSensitive; }
    void setRule(const std::optional<QString>& rule) { _fields.rule = rule; }
    void setType(qint64 type) { _fields.type = type; }
    void setState(bool state) { _fields.state = state; }
    void setCaseSensitive(bool caseSensitive) { _fields.caseSensitive = caseSensitive; }
    /// The four together, as a value.
    [[nodiscard]] const BlacklistRule& fields() const { return _fields; }

    /// Whether the rule catches the address, whatever its state.
    [[nodiscard]] bool testString(const QString& address, Logger& log) const;
    [[nodiscard]] bool testString(const QString& address, Qt::CaseSensitivity option, Logger& log) const;
    /// "Filter (…): case flag, state flag, rule"
    [[nodiscard]] QString description() const;

private:
    friend class BlacklistReader;
    friend class BlacklistWriter;

    BlacklistRule _fields;
    /// Entries of the stored rule that this program does not know or cannot read, written back as they were.
    QList<OpaqueEntry> _unknownEntries;
    /// The rule in the file it was read from, to which carried values may refer; none for a new one.
    std::shared_ptr<const OpaqueObject> _source;
};

} // namespace quarry
