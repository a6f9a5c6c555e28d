#pragma once

#include <QByteArray>

#include <optional>

namespace quarry {

/// A file of the folder, read as a document: text, Markdown or HTML, plain or compressed with gzip.
struct Document {
    enum class Kind { Text, Html };

    Kind kind = Kind::Text;
    QByteArray title;   ///< Never empty; one line.
    QByteArray text;    ///< Decoded, the kind's own markup included.
    bool isCut = false; ///< There is more than this.

    /// At most that many bytes of a decoded document are looked at: for the index, and for a page.
    static constexpr qsizetype indexLimit = qsizetype(128) * 1024;
    static constexpr qsizetype pageLimit = qsizetype(4) * 1024 * 1024;

    /// From the file's bytes, cut at the limit or one byte later; none when it is no document: binary, or a file that
    /// only serves others (style sheets, scripts). The path gives the kind, and the title where the text has none.
    [[nodiscard]] static std::optional<Document> fromFile(const QByteArray& path, const QByteArray& bytes,
                                                          qsizetype limit);
    /// Whether a file of that name is worth opening.
    [[nodiscard]] static bool isCandidate(const QByteArray& name);

    /// What the index takes in: one line without markup and without control characters.
    [[nodiscard]] QByteArray plainText() const;
    /// The whole document as HTML in UTF-8: an HTML file as it is, any other escaped.
    [[nodiscard]] QByteArray page() const;
};

/// Every run of white space and control characters becomes one space; none at the ends.
[[nodiscard]] QByteArray collapsed(const QByteArray& text);

} // namespace quarry
