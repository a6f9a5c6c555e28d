#include "platform/FolderWatch.h"

#include <QByteArray>
#include <QFile>
#include <QString>

#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>

namespace quarry {

namespace {

constexpr unsigned watchedEvents = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_CLOSE_WRITE | IN_MODIFY |
                                   IN_ATTRIB | IN_ONLYDIR | IN_DONT_FOLLOW | IN_EXCL_UNLINK;

} // namespace

FolderWatch::FolderWatch(const QString& root)
    : _root(QFile::encodeName(root)), _descriptor(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
{
    _complete = _descriptor >= 0;
}

FolderWatch::~FolderWatch()
{
    if (_descriptor >= 0)
        ::close(_descriptor);
}

bool FolderWatch::add(const QByteArray& folder)
{
    if (_descriptor < 0)
        return false;
    const QByteArray path = folder.isEmpty() ? _root : _root + '/' + folder;
    const int watch = ::inotify_add_watch(_descriptor, path.constData(), watchedEvents);
    if (watch >= 0) {
        // A folder that was moved keeps its watch: from now on it goes by its new name.
        _folders[watch] = folder;
        return true;
    }
    // A folder that went meanwhile, or that nobody may read, needs no watch.
    if (errno == ENOENT || errno == ENOTDIR || errno == EACCES || errno == ELOOP)
        return true;
    _complete = false;
    return false;
}

FolderWatch::Changes FolderWatch::take()
{
    Changes changes;
    alignas(inotify_event) std::array<char, std::size_t(64)* 1024> buffer = {};
    while (_descriptor >= 0) {
        const ssize_t count = ::read(_descriptor, buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            break;
        for (ssize_t at = 0; at < count;) {
            inotify_event event = {};
            std::memcpy(&event, buffer.data() + at, sizeof event);
            const char* name = buffer.data() + at + sizeof event;
            note(changes, event.wd, event.mask, event.len > 0 ? QByteArray(name) : QByteArray());
            at += static_cast<ssize_t>(sizeof event + event.len);
        }
    }
    return changes;
}

void FolderWatch::note(Changes& changes, int watch, unsigned mask, const QByteArray& name)
{
    if ((mask & IN_Q_OVERFLOW) != 0) {
        changes.everything = true;
        return;
    }
    const auto known = _folders.find(watch);
    if (known == _folders.end())
        return;
    const QByteArray folder = known->second;
    if ((mask & IN_IGNORED) != 0) {
        _folders.erase(known);
        return;
    }
    changes.folders.insert(folder);
    // A folder's own date changes with whatever happens in it, and that is told by its own watch.
    if ((mask & IN_ISDIR) != 0 && (mask & (IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_ATTRIB)) != 0 &&
        !name.isEmpty())
        changes.trees.insert(folder.isEmpty() ? name : folder + '/' + name);
}

} // namespace quarry
