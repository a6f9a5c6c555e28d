#include "apps/quarry/CommandLine.h"
#include "apps/quarry/Output.h"
#include "log/LogFile.h"

#include <QJsonArray>

namespace quarry {

namespace {

constexpr qint64 UsualLines = 20;

struct Options {
    std::optional<qint64> lines;
    bool json = false;
};

Outcome showLog(Session& session, const Options& options)
{
    if (Outcome home = session.checkHome(); !home.ok())
        return home;
    const FileStore::ReadResult file = session.files().read(session.home().logFile());
    if (!file.error.isEmpty())
        return Outcome::failed(file.error);
    QStringList lines = QString::fromUtf8(file.bytes).split(u'\n');
    if (lines.last().isEmpty())
        lines.removeLast();
    lines = lines.mid(std::max(qsizetype(0), lines.size() - qsizetype(options.lines.value_or(UsualLines))));
    if (options.json)
        return Outcome::done(jsonText({{QStringLiteral("lines"), QJsonArray::fromStringList(lines)}}));
    if (lines.isEmpty())
        return Outcome::done(QStringLiteral("The log is empty"));
    for (QString& line : lines)
        line = shown(line);
    return Outcome::done(lines.join(u'\n'));
}

} // namespace

void addLogCommand(CommandLine& line)
{
    const auto options = std::make_shared<Options>();
    line.command(QStringLiteral("Settings"), QStringLiteral("log"), QStringLiteral("Show what refreshes logged"),
                 {QStringLiteral("quarry log"), QStringLiteral("quarry log --lines 100")})
        .number(QStringLiteral("-n,--lines"), QStringLiteral("N"), options->lines, 1, LogFile::MostPieces,
                QStringLiteral("So many lines from the end; %1 without").arg(UsualLines))
        .flag(QStringLiteral("--json"), options->json, QStringLiteral("For programs"))
        .action([options](Session& session) { return showLog(session, *options); });
}

} // namespace quarry
