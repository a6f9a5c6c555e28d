#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

namespace quarry {

/// What a person typed, taken apart: words that all have to occur, "phrases", -words that must not, OR between two,
/// site:PLACE. A quote that is not closed runs to the end.
struct SearchText {
    struct Term {
        QString text;
        bool isQuoted = false;
        bool isExcluded = false;
        bool isAlternative = false; ///< Instead of the term before it.
    };
    QList<Term> terms; ///< Each has a letter or a digit.
    QStringList sites;

    [[nodiscard]] static SearchText fromText(const QString& text);
    /// In the full-text index's own language; empty when nothing is asked for.
    [[nodiscard]] QByteArray indexExpression() const;
};

} // namespace quarry
