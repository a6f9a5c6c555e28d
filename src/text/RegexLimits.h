#pragma once

#include <QByteArray>
#include <QString>

namespace quarry {

/// What a pattern may ask of the C library's matcher, which expands counted repetitions by copying, descends one
/// stack frame a parenthesis, and searches back-references exponentially. Within these bounds compiling takes
/// milliseconds and a few megabytes.
struct RegexLimits {
    static constexpr qsizetype PatternBytes = 32768;
    static constexpr int Depth = 200;
    static constexpr int Groups = 1000;
    /// Optional or repeated pieces: each may be left out or not, at every character of the text.
    static constexpr int Repetitions = 1000;
    /// Places that counted repetitions may add by copying, nested counts multiplied.
    static constexpr qint64 Copies = 1000;
    /// The same in a pattern that refers back.
    static constexpr qint64 CopiesBesideBackReferences = 20;
    /// A back-reference costs 1; one to a group without an upper length costs all of it. One that is repeated, or
    /// that refers to a group which may be empty, is refused: the matcher can run out of stack on it.
    static constexpr int BackReferences = 4;

    /// Empty when the pattern is within the bounds, else what is too much of it, in words. Linear in the pattern;
    /// a pattern that is no valid expression passes, the compiler says what is wrong with it.
    [[nodiscard]] static QString excess(const QByteArray& pattern);
};

} // namespace quarry
