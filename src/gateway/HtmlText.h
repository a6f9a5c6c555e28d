#pragma once

#include <QByteArray>
#include <QByteArrayView>

namespace quarry {

/// What a reader sees of a page, for the index. (The texts of search results go by other rules, which drop links with
/// their words; an index wants them.)
struct HtmlText {
    QByteArray title; ///< Of the title element; may be empty.
    QByteArray body;  ///< Blocks are set apart by white space; scripts, styles and comments are gone.

    /// Of UTF-8 bytes, which may be cut anywhere.
    [[nodiscard]] static HtmlText fromPage(QByteArrayView page);
    /// The charset a page declares in its head, as it stands there; empty when there is none.
    [[nodiscard]] static QByteArray declaredCharset(QByteArrayView page);
};

} // namespace quarry
