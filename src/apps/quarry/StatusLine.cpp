#include "apps/quarry/StatusLine.h"

#include "apps/quarry/Output.h"
#include "platform/Terminal.h"

#include <cstdio>

namespace quarry {

namespace {

constexpr qsizetype LongestStatus = 76;

} // namespace

StatusLine::StatusLine(Voice voice) : _saysLines(voice == Voice::Lines), _showsStatus(_saysLines && isTerminal(stdout))
{
}

void StatusLine::say(const QString& line)
{
    if (!_saysLines)
        return;
    clear();
    writeOut(line + u'\n');
    std::fflush(stdout);
}

void StatusLine::show(const QString& status)
{
    if (!_showsStatus)
        return;
    clear();
    writeOut(faint(shownWithin(status, LongestStatus)));
    std::fflush(stdout);
    _hasStatus = true;
}

void StatusLine::clear()
{
    if (_hasStatus)
        writeOut(QStringLiteral("\r\x1b[K"));
    _hasStatus = false;
}

} // namespace quarry
