#include "updater/IntegerValue.h"

#include <limits>

namespace quarry {

qint64 integerValue(QStringView text)
{
    text = text.trimmed();
    const bool negative = text.startsWith(u'-');
    if (negative || text.startsWith(u'+'))
        text = text.sliced(1);
    qint64 value = 0;
    for (const QChar c : text) {
        if (c < u'0' || c > u'9')
            break;
        const qint64 digit = c.unicode() - u'0';
        if (value > (std::numeric_limits<qint64>::max() - digit) / 10) {
            value = std::numeric_limits<qint64>::max();
            break;
        }
        value = value * 10 + digit;
    }
    return negative ? -value : value;
}

} // namespace quarry
