#pragma once

#include <QByteArray>
#include <QString>
#include <QStringView>

namespace quarry {

/// The charset of a Content-Type value ("text/html; charset=utf-8"); empty when it names none.
[[nodiscard]] QString charsetOfContentType(QStringView contentType);

/// The charset that a page declares in its first 4 KiB, in a meta element or an XML declaration, comments apart;
/// empty when it declares none. UTF-16 reads as UTF-8, since the declaration itself could be read.
[[nodiscard]] QString charsetDeclaredInPage(const QByteArray& page);

} // namespace quarry
