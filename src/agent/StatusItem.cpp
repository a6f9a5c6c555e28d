#include "agent/StatusItem.h"

namespace quarry {

QString InfoText::body() const
{
    QString text;
    for (const Line& line : lines)
        text += line.text;
    return text;
}

} // namespace quarry
