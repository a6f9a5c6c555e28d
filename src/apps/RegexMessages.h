#pragma once

#include "archive/StringTable.h"
#include "text/CSRegex.h"

namespace quarry {

/// Says what is wrong with a regular expression in the user's language. Called once at the start of a program; the
/// table is read when the first expression fails.
inline void localiseRegexMessages()
{
    CSRegex::setMessageLookup([](const QString& english) {
        static const StringTable texts = StringTable::ofProgram();
        return texts.text(english);
    });
}

} // namespace quarry
