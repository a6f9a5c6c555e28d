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
};

} // namespace quarry
