#pragma once

#include <QString>
#include <QStringView>

namespace quarry {

/// The host of the address that the text makes; the text unchanged when it makes none or has no host.
[[nodiscard]] QString baseURL(const QString& text);

/// Without the last path segment and the slash before it; a site's root stays as it is.
[[nodiscard]] QString stringByDeletingLastURLComponent(const QString& text);
/// The component appended with exactly one "/" between; nothing but the component when the text is empty.
[[nodiscard]] QString stringByAppendingURLComponent(const QString& text, QStringView component);

/// Every ".", "/", "?" and "*" as "_".
[[nodiscard]] QString convertStringToValidPath(const QString& text);

/// Makes the src="..." of every "<img" absolute: a value that does not begin with "http://" is resolved against the
/// base and replaced. A value that makes no address stays.
void fixupRelativeImgTags(QString& text, const QString& baseAddress);

} // namespace quarry
