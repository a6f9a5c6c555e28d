#include "text/RegexFault.h"

#include "text/CSRegex.h"

namespace quarry {

namespace {

/// The place is looked for by trying beginnings; beyond this length nobody reads where the pointer stands.
constexpr qsizetype LongestToPoint = 200;

/// The number of the error; 0 when it compiles.
int errorOf(const QString& pattern)
{
    try {
        const CSRegex compiles(pattern);
    } catch (const CSRegexException& fault) {
        return fault.code();
    }
    return 0;
}

/// Something was opened and never closed, or closed and never opened: then the longest beginning that compiles ends
/// before it.
bool isUnbalanced(int error)
{
    return error == int(RegexError::UnbalancedBracket) || error == int(RegexError::UnbalancedParenthesis) ||
           error == int(RegexError::UnbalancedBrace) || error == int(RegexError::BadPattern) ||
           error == int(RegexError::BadEscape);
}

/// The place of the character at fault. The C library does not tell it.
qsizetype placeOfFault(const QString& pattern, int error)
{
    qsizetype place = 0;
    for (qsizetype length = 1; length <= pattern.size(); ++length) {
        const int here = errorOf(pattern.left(length));
        if (isUnbalanced(error) && here == 0)
            place = length;
        else if (!isUnbalanced(error) && here == error)
            return length - 1;
    }
    return place;
}

} // namespace

std::optional<RegexFault> regexFault(const QString& pattern)
{
    try {
        const CSRegex compiles(pattern);
        return std::nullopt;
    } catch (const CSRegexException& fault) {
        return RegexFault{fault.reason(), pattern.size() > LongestToPoint ? -1 : placeOfFault(pattern, fault.code())};
    }
}

} // namespace quarry
