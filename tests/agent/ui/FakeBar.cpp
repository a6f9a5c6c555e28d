#include "FakeBar.h"

#include "FakeWatcher.h"

#include <QCoreApplication>

namespace quarry {

int runFakeBar(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const FakeWatcher watcher(QCoreApplication::arguments().contains(QStringLiteral("--host")));
    return QCoreApplication::exec();
}

} // namespace quarry
