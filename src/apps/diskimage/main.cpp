// The disk-image helper, where the system has no tool of its own: the same verbs and arguments.
#include "updater/MountFolder.h"

#include <QStringList>

#include <clocale>
#include <cstdio>

namespace {

constexpr int wrongUsage = 64;

int usage()
{
    std::fputs("Usage: DiskImageTool attach -mountpoint FOLDER [-quiet] [-readonly] [-nobrowse] [-owners on] IMAGE\n"
               "       DiskImageTool detach FOLDER [-quiet] [-force]\n"
               "\n"
               "attach unpacks an image into a folder that it makes; detach removes that folder.\n",
               stderr);
    return wrongUsage;
}

struct Arguments {
    QString verb;
    QString mountPoint;
    QStringList names;
    bool quiet = false;
    bool makeSense = true;
};

Arguments readArguments(const QStringList& texts)
{
    Arguments arguments;
    arguments.verb = texts.value(0);
    for (qsizetype i = 1; i < texts.size(); ++i) {
        const QString& text = texts[i];
        if (text == QLatin1String("-mountpoint"))
            arguments.mountPoint = texts.value(++i);
        else if (text == QLatin1String("-owners"))
            ++i; // What is unpacked belongs to the user, whatever the image says.
        else if (text == QLatin1String("-quiet"))
            arguments.quiet = true;
        else if (!text.startsWith(u'-'))
            arguments.names.append(text);
        else if (text != QLatin1String("-readonly") && text != QLatin1String("-nobrowse") &&
                 text != QLatin1String("-force"))
            arguments.makeSense = false;
    }
    arguments.makeSense = arguments.makeSense && arguments.names.size() == 1;
    return arguments;
}

} // namespace

int main(int count, char** texts)
{
    // Names in images become bytes of UTF-8, whatever language the user's programs speak.
    std::setlocale(LC_CTYPE, "C.UTF-8");
    QStringList list;
    for (int i = 1; i < count; ++i)
        list.append(QString::fromUtf8(texts[i]));
    const Arguments arguments = readArguments(list);
    QString fault;
    if (arguments.makeSense && arguments.verb == QLatin1String("attach") && !arguments.mountPoint.isEmpty())
        fault = quarry::attachImage(arguments.names.first(), arguments.mountPoint);
    else if (arguments.makeSense && arguments.verb == QLatin1String("detach"))
        fault = quarry::detachImage(arguments.names.first());
    else
        return usage();
    if (!fault.isEmpty() && !arguments.quiet)
        std::fprintf(stderr, "DiskImageTool: %s\n", fault.toUtf8().constData());
    return fault.isEmpty() ? 0 : 1;
}
