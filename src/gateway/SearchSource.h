#pragma once

#include "gateway/SearchText.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace quarry {

// Texts in this folder are UTF-8 bytes: they come from files and go to the index and onto the wire as they are.

/// How a service orders what matches: by where the words stand, and by what else it likes in a document.
struct Ranking {
    enum class Liking { Nothing, Newer, Shorter, Longer, ShorterPath };
    double title = 1;
    double path = 1;
    double body = 1;
    Liking liking = Liking::Nothing;
};

/// One search as a service hands it on.
struct SearchRequest {
    SearchText text;          ///< Its sites are resolved: they stand in places.
    QList<QByteArray> places; ///< Paths below the root; only documents that lie in all of them, or are one, count.
    Ranking ranking;
    int first = 0; ///< Counts from 0.
    int count = 10;
};

/// What stands before and after a matched word of an excerpt. No other control character occurs in one.
constexpr char matchBegin = '\x02';
constexpr char matchEnd = '\x03';

struct FoundDocument {
    QByteArray path;    ///< Below the source's root, the bytes as they are, "/" between the parts.
    QByteArray title;   ///< Never empty; one line, no markup.
    QByteArray excerpt; ///< One line, no markup, with matchBegin and matchEnd; may be empty.
};

struct SearchAnswer {
    std::vector<FoundDocument> found;
    std::int64_t total = 0; ///< Of all pages.
    QString error;          ///< Empty unless the source could not answer.
};

/// A document as a page: complete HTML in UTF-8.
struct DocumentPage {
    QByteArray html;
};

/// What the gateway searches in. Called from several threads at once.
class SearchSource {
public:
    virtual ~SearchSource() = default;
    /// A text without words finds every document of the places, newest first, and nothing when there is no place
    /// either.
    [[nodiscard]] virtual SearchAnswer search(const SearchRequest& request) = 0;
    /// None when there is no such document.
    [[nodiscard]] virtual std::optional<DocumentPage> document(const QByteArray& path) = 0;
    [[nodiscard]] virtual std::int64_t documentCount() = 0;
};

} // namespace quarry
