// What the agent costs while nothing is due: the real program in a desktop of its own for some minutes, then its ticks
// driven fast in this process, so that a leak of a few bytes a tick shows.

#include "IdleAgent.h"
#include "ProcessFigures.h"

#include <QApplication>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdio>

namespace {

using namespace quarry;
using namespace quarry::bench;

constexpr double UsualMinutes = 10.0;
/// Until the agent has found its tray, or given up looking for it.
constexpr int SecondsToSettle = 35;
constexpr int WarmUpTicks = 1000;
constexpr int Ticks = 10000;

constexpr double MostShareOfCore = 0.2; // percent
constexpr double MostResident = 60.0;   // MB
constexpr double MostGrowth = 0.25;     // MB: less than 26 bytes a tick, and more than a page or two of fragments

bool report(const char* what, double measured, double most, const char* unit)
{
    const bool met = measured <= most;
    std::printf("%-44s %10.3f %-4s  (at most %g)%s\n", what, measured, unit, most, met ? "" : "  MISSED");
    std::fflush(stdout);
    return met;
}

void letPass(double seconds)
{
    QTimer::singleShot(static_cast<int>(seconds * 1000), qApp, [] { QCoreApplication::exit(0); });
    QCoreApplication::exec();
}

/// The real program, left alone.
bool measureProgram(double minutes)
{
    const IdleHome home;
    QProcess agent;
    agent.setProcessChannelMode(QProcess::ForwardedChannels);
    agent.start(IdleHome::bundle() + QStringLiteral("/Contents/bin/QuarrySpotterAgent"),
                {QStringLiteral("--home"), home.path()});
    letPass(SecondsToSettle);
    const auto before = figuresOf(agent.processId());
    letPass(minutes * 60);
    const auto after = figuresOf(agent.processId());
    const bool lives = agent.state() == QProcess::Running && before && after;
    agent.terminate();
    agent.waitForFinished();
    if (!lives) {
        std::printf("the agent did not run\n");
        return false;
    }
    std::printf("%g minutes with nothing due, an empty database:\n", minutes);
    const double share = (after->processorSeconds - before->processorSeconds) / (minutes * 60) * 100;
    bool met = report("processor time, of one core", share, MostShareOfCore, "%");
    met = report("resident memory", after->residentMegabytes, MostResident, "MB") && met;
    met = report("written to disks", after->bytesToDisk - before->bytesToDisk, 0, "B") && met;
    return report("grown", after->residentMegabytes - before->residentMegabytes, MostGrowth, "MB") && met;
}

bool measureTicks(const char* what, const IdleHome& home)
{
    IdleAgent agent(home);
    agent.tick(WarmUpTicks);
    const auto before = figuresOf(QCoreApplication::applicationPid());
    agent.tick(Ticks);
    const auto after = figuresOf(QCoreApplication::applicationPid());
    if (!before || !after || agent.launches() != 0) {
        std::printf("%s: a refresh was started, or nothing can be measured\n", what);
        return false;
    }
    std::printf("%d ticks, %s: %.1f microseconds of the processor each\n", Ticks, what,
                (after->processorSeconds - before->processorSeconds) / Ticks * 1e6);
    return report("grown", after->residentMegabytes - before->residentMegabytes, MostGrowth, "MB");
}

int measure(double minutes)
{
    QProcess tray;
    tray.start(QStringLiteral("trayer"), {QStringLiteral("--edge"), QStringLiteral("top")});
    bool met = measureTicks("nothing new", IdleHome());
    const IdleHome withNews;
    withNews.addUnreadResult();
    met = measureTicks("blinking", withNews) && met;
    met = measureProgram(minutes) && met;
    tray.kill();
    tray.waitForFinished();
    return met ? 0 : 1;
}

} // namespace

/// `bench_agent_idle [MINUTES]`
int main(int argc, char** argv)
{
    const double minutes = argc > 1 ? QByteArray(argv[1]).toDouble() : UsualMinutes;
    if (!(minutes > 0)) {
        std::fprintf(stderr, "bench_agent_idle: \"%s\" is no number of minutes\n", argv[1]);
        return 2;
    }
    if (!qEnvironmentVariableIsSet("QUARRY_OWN_DESKTOP")) {
        qputenv("QUARRY_OWN_DESKTOP", "1");
        return QProcess::execute(
            QStringLiteral(QUARRY_WITH_DESKTOP),
            {QStringLiteral("--own-processes"), QString::fromLocal8Bit(argv[0]), QString::number(minutes)});
    }
    const QApplication application(argc, argv);
    return measure(minutes);
}
