#pragma once

#include <QString>
#include <QStringView>

namespace quarry {

/// Page text made ready for scanning: every tab one blank, without line ends, "<wbr />", script blocks and comments.
///
/// It is made once for a page, in time proportional to its length, and shared by all scans of the page and of its
/// parts. A cheap, implicitly shared value; safe to read from several threads. All comparisons ignore case.
class ScanCopy final {
public:
    /// Made in the text itself where nobody else shares it.
    explicit ScanCopy(QString code);

    [[nodiscard]] QStringView text() const { return _text; }

    /// The scan copy of a stretch of this copy's text, such as the inner text of an element. It shares the text,
    /// except in the odd page where what was removed joined its surroundings to something that is to be removed too.
    [[nodiscard]] ScanCopy part(QStringView stretch) const;

private:
    ScanCopy() = default;

    QString _buffer;
    QStringView _text;
    /// Making a scan copy of any stretch of this one changes nothing.
    bool _settled = true;
};

} // namespace quarry
