#include "apps/quarry/ExpressionFault.h"

#include "apps/quarry/Output.h"
#include "text/RegexFault.h"

namespace quarry {

std::optional<QString> expressionFault(const QString& pattern)
{
    const std::optional<RegexFault> fault = regexFault(pattern);
    if (!fault)
        return std::nullopt;
    QString text = QStringLiteral("the expression is not valid");
    if (!fault->reason.isEmpty())
        text += QStringLiteral(": ") + fault->reason;
    if (fault->place < 0)
        return text;
    const QString upToFault = shown(pattern.left(fault->place) + u'x');
    return text + QStringLiteral("\n  ") + shown(pattern) + QStringLiteral("\n  ") +
           QString(upToFault.size() - 1, u' ') + u'^';
}

} // namespace quarry
