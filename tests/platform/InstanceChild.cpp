// A program of which one copy runs: says whether it is the first, and then what the others want of it.
// Arguments: the folder of the lock, files to open.

#include "platform/desktop/SessionBus.h"
#include "platform/desktop/SingleInstance.h"

#include <QCoreApplication>

#include <cstdio>

using namespace quarry;

static void say(const QString& line)
{
    std::puts(line.toUtf8().constData());
    std::fflush(stdout);
}

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    SessionBus bus;
    SingleInstance instance(bus, QStringLiteral("com.zep.Quarry-Test"), arguments.at(1));
    instance.setRequestHandler([](const SingleInstance::Request& request) {
        say(QStringLiteral("asked: ") + request.files.join(u'|') + u' ' + request.activationToken);
    });
    switch (instance.claim(arguments.mid(2))) {
    case SingleInstance::Outcome::First:
        say(QStringLiteral("first"));
        return QCoreApplication::exec();
    case SingleInstance::Outcome::HandedOver:
        say(QStringLiteral("handed over"));
        return 0;
    case SingleInstance::Outcome::Failed:
        say(QStringLiteral("failed"));
        return 1;
    }
    return 2;
}
