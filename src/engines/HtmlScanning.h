#pragma once

#include "engines/ScanCopy.h"
#include "text/Url.h"

#include <QList>
#include <QString>
#include <QStringView>

#include <optional>

namespace quarry {

// Cuts pieces out of a result page by searching for markers, without parsing it. Comparisons ignore case. Nothing
// fails: a marker that is not there yields an empty text or list. Reentrant.
//
// The texts that come back are views into the scan copy they were found in; `ScanCopy::part` makes one of them ready
// for scanning itself. They are raw markup. Names and values to look for do not end in a blank.
//
// A protection character is the quote around the attribute's value in the page; 0 stands for the double quote.

/// The inner texts of the elements with a class; without a class, of the elements whose name begins with `tag`.
///
/// With a class, every element that carries it is taken, whatever its name: `tag` tells which elements nest and which
/// close tag ends it. Unprotected, the class is a prefix of the attribute's unquoted text. An element that is not
/// closed runs to the end; an empty one ends the scan. Never an empty list: one empty text when there is nothing.
[[nodiscard]] QList<QStringView> contentsOfTagWithClass(QStringView tag, std::optional<QStringView> className,
                                                        const ScanCopy& code, bool protectClass,
                                                        char16_t protectionCharacter = 0);

/// The same by any attribute; here the list is empty when there is nothing.
[[nodiscard]] QList<QStringView> contentsOfTagWithAttribute(QStringView tag, QStringView attribute,
                                                            QStringView attributeValue, const ScanCopy& code,
                                                            bool protectClass, char16_t protectionCharacter = 0);

/// The first link target (href) from the start of the first element with that class on; without a class, of the first
/// "a href".
[[nodiscard]] QStringView targetOfLinkWithClass(std::optional<QStringView> className, const ScanCopy& code);

/// The same from the element with that id on; the character quotes id and target both. With 0, the id stands unquoted
/// and the target in double quotes.
[[nodiscard]] QStringView targetOfLinkWithId(QStringView id, const ScanCopy& code, char16_t protectionCharacter);

/// The first target that stands in an "ourl" attribute, where the visible link is a click counter's.
[[nodiscard]] QStringView targetOfYahooLinkWithClass(QStringView className, const ScanCopy& code);

/// The inner text of the first div with that id; empty when there is none.
[[nodiscard]] QStringView extractDIVNamed(QStringView name, const ScanCopy& code);

/// The real target of Google's redirecting link; any other link with its percent escapes undone. None when a
/// redirecting link has no "&amp;" after its target or the target is no address.
[[nodiscard]] std::optional<Url> cleanGoogleLink(const Url& link);

} // namespace quarry
