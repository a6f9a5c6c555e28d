#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <exception>
#include <functional>
#include <memory>
#include <optional>

namespace quarry {

/// The numbers of the compile errors, in the order of the product's message table. Some have no counterpart in the
/// C library; they keep their numbers.
enum class RegexError : int {
    NoMatch = 1,
    BadPattern = 2,
    BadCollatingElement = 3,
    BadCharacterClass = 4,
    BadEscape = 5,
    BadBackReference = 6,
    UnbalancedBracket = 7,
    UnbalancedParenthesis = 8,
    UnbalancedBrace = 9,
    BadRepetition = 10,
    BadRange = 11,
    OutOfMemory = 12,
    BadRepetitionOperand = 13,
    EmptyExpression = 14,
    Assertion = 15,
    InvalidArgument = 16,
    IllegalSequence = 17,
};

/// Raised when a pattern does not compile. `name` is "CSRegexException".
class CSRegexException final : public std::exception {
public:
    CSRegexException(int code, QString reason);
    [[nodiscard]] static QString name() { return QStringLiteral("CSRegexException"); }
    [[nodiscard]] int code() const { return _code; }
    /// For a person; localised where a look-up was set.
    [[nodiscard]] const QString& reason() const { return _reason; }
    [[nodiscard]] const char* what() const noexcept override { return _utf8.constData(); }

private:
    int _code;
    QString _reason;
    QByteArray _utf8;
};

/// Raised by stringForMatch for a group that the expression does not have.
class CSRegexRangeException final : public std::exception {
public:
    explicit CSRegexRangeException(QString reason);
    [[nodiscard]] const QString& reason() const { return _reason; }
    [[nodiscard]] const char* what() const noexcept override { return _utf8.constData(); }

private:
    QString _reason;
    QByteArray _utf8;
};

/// A range of bytes in a buffer.
struct ByteRange {
    qsizetype location = 0;
    qsizetype length = 0;
};

/// A POSIX extended regular expression over the UTF-8 bytes of a text, compiled once. Matching does not depend on
/// the process's locale. An instance is reused but not shared between threads while it matches.
///
/// A pattern that could eat the machine (counts that multiply, deep nesting, many back-references; RegexLimits.h)
/// is refused as out of memory without being tried.
class CSRegex final {
public:
    /// Compile options; they may be combined. Extended syntax is always on.
    enum Option : int { None = 0, IgnoreCase = 1, NoSubexpressions = 2, NewlineSensitive = 4 };

    /// Throws CSRegexException when the pattern does not compile, std::bad_alloc when there is no memory for it.
    explicit CSRegex(const QString& pattern, int options = None);
    ~CSRegex();
    CSRegex(CSRegex&&) noexcept;
    CSRegex& operator=(CSRegex&&) noexcept;

    [[nodiscard]] static CSRegex regexWithPattern(const QString& pattern, int options = None);
    /// The text that stands for a group which took no part in a match: empty.
    [[nodiscard]] static const QString& null();

    void beginMatchingString(const QString& text);
    void beginMatchingData(const QByteArray& bytes);
    void beginMatchingData(const QByteArray& bytes, ByteRange range);
    /// The next match inside the range. After a match of the empty text the next call finds it again.
    bool matchNext();
    void finishMatching();
    /// Group n of the last match, 0 the whole of it; none for a group that took no part. Throws
    /// CSRegexRangeException for a number the expression does not have.
    [[nodiscard]] std::optional<QString> stringForMatch(int n) const;
    /// Every group of the last match in order, null() for those that took no part.
    [[nodiscard]] QStringList allMatches() const;
    [[nodiscard]] bool matchesString(const QString& text);
    [[nodiscard]] std::optional<QString> matchedSubstringOfString(const QString& text);
    [[nodiscard]] std::optional<QStringList> capturedSubstringsOfString(const QString& text);
    /// The pattern of this and the next two must not match the empty text: they would never end.
    [[nodiscard]] QStringList allMatchedSubstringsOfString(const QString& text);
    [[nodiscard]] QList<QStringList> allCapturedSubstringsOfString(const QString& text);
    [[nodiscard]] QStringList componentsOfSeparatedString(const QString& text);

    [[nodiscard]] const QString& pattern() const;
    [[nodiscard]] const QString& description() const { return pattern(); }
    /// The number of groups.
    [[nodiscard]] std::size_t subexpressionCount() const;

    /// How the messages are localised: the English text in, the text to show out. Process-wide, set once at start.
    static void setMessageLookup(std::function<QString(const QString&)> lookup);
    /// The English message of an error; empty for a number without one.
    [[nodiscard]] static QString messageForCode(int code);

private:
    struct Compiled;
    std::unique_ptr<Compiled> _compiled;
};

// One-call forms, the subject first.
[[nodiscard]] bool matchedByPattern(const QString& text, const QString& pattern, int options = CSRegex::None);
[[nodiscard]] std::optional<QString> substringMatchedByPattern(const QString& text, const QString& pattern,
                                                               int options = CSRegex::None);
[[nodiscard]] std::optional<QStringList> substringsCapturedByPattern(const QString& text, const QString& pattern,
                                                                     int options = CSRegex::None);
[[nodiscard]] QStringList allSubstringsMatchedByPattern(const QString& text, const QString& pattern,
                                                        int options = CSRegex::None);
[[nodiscard]] QList<QStringList> allSubstringsCapturedByPattern(const QString& text, const QString& pattern,
                                                                int options = CSRegex::None);
[[nodiscard]] QStringList componentsSeparatedByPattern(const QString& text, const QString& pattern,
                                                       int options = CSRegex::None);
/// A backslash before each of $ ( ) * + . ? [ \ ^ { | and before nothing else.
[[nodiscard]] QString escapedPattern(const QString& text);

} // namespace quarry
