#include "agent/ProcessLookup.h"

namespace quarry {

namespace {

constexpr qsizetype CommandLength = 16;
/// What the kernel's own field keeps.
constexpr qsizetype ShortenedLength = 15;
constexpr int EnoughCopies = 3;

bool isNamed(const ProcessRecord& process, const QString& name, Qt::CaseSensitivity sensitivity)
{
    const QString sought = name.left(process.commandIsShortened ? ShortenedLength : CommandLength);
    return process.command.compare(sought, sensitivity) == 0;
}

} // namespace

std::optional<QList<DaemonInfo>> processInfoForDaemonNamed(const QString& name, const ProcessSnapshot& processes)
{
    if (name.isNull() || !processes)
        return std::nullopt;
    QList<DaemonInfo> found;
    for (const ProcessRecord& process : *processes) {
        if (isNamed(process, name, Qt::CaseSensitive))
            found.append({name.left(CommandLength), process.userId, process.processId});
    }
    return found.isEmpty() ? std::nullopt : std::optional(found);
}

int copiesRunning(const QString& name, const ProcessSnapshot& processes)
{
    int copies = 0;
    for (const ProcessRecord& process : processes.value_or(std::vector<ProcessRecord>())) {
        if (isNamed(process, name, Qt::CaseInsensitive) && ++copies == EnoughCopies)
            break;
    }
    return copies;
}

} // namespace quarry
