#include "platform/linux/LinuxProcessTable.h"

#include "platform/linux/Descriptor.h"

#include <QFile>

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <charconv>
#include <climits>
#include <cstdio>
#include <cstring>

namespace quarry {

namespace {

constexpr qsizetype LongestCommand = 16;
/// A new process soon takes on the program it was made for; later that is rare.
constexpr unsigned YoungReadings = 3;
constexpr unsigned ReadingsBetweenLooks = 8;
/// The kernel's mark of its own threads, in the field "flags" of /proc/PID/stat.
constexpr unsigned KernelThread = 0x00200000;

using Name = std::array<char, 32>;

/// "PID/name", below /proc.
const char* nameBelow(Name& buffer, std::int64_t processId, const char* name)
{
    std::snprintf(buffer.data(), buffer.size(), "%lld/%s", static_cast<long long>(processId), name);
    return buffer.data();
}

/// The number that a folder of /proc is named by; 0 for the others.
std::int64_t processIdOf(const char* name)
{
    std::int64_t value = 0;
    const char* end = name + std::strlen(name);
    const auto [rest, fault] = std::from_chars(name, end, value);
    return fault == std::errc() && rest == end ? value : 0;
}

/// The file's name in a path; what the kernel adds after an upgrade replaced the file is no part of it.
QByteArrayView fileNameIn(QByteArrayView path)
{
    constexpr QByteArrayView Deleted(" (deleted)");
    if (path.endsWith(Deleted))
        path.chop(Deleted.size());
    return path.sliced(path.lastIndexOf('/') + 1);
}

/// What matters of a line of /proc/PID/stat.
struct KernelLine {
    QByteArrayView command;
    char state = '?';
    unsigned flags = 0;
};

/// "PID (command) state parent group session terminal terminalgroup flags …"; the command may hold anything, blanks and
/// parentheses too.
std::optional<KernelLine> parseKernelLine(QByteArrayView line)
{
    const qsizetype begin = line.indexOf('(');
    const qsizetype end = line.lastIndexOf(')');
    if (begin < 0 || end < begin || line.size() < end + 3)
        return std::nullopt;
    KernelLine parsed;
    parsed.command = line.sliced(begin + 1, end - begin - 1);
    parsed.state = line.at(end + 2);
    qsizetype field = end + 2;
    for (int skipped = 0; skipped < 6 && field > 0; ++skipped)
        field = line.indexOf(' ', field) + 1;
    if (field > 0)
        std::from_chars(line.data() + field, line.data() + line.size(), parsed.flags);
    return parsed;
}

bool sendSignal(std::int64_t processId, int signal)
{
    // 0 and below would mean whole groups of processes.
    return processId > 0 && processId <= INT_MAX && ::kill(static_cast<pid_t>(processId), signal) == 0;
}

} // namespace

LinuxProcessTable::LinuxProcessTable() : _folder(::opendir("/proc")) {}

LinuxProcessTable::~LinuxProcessTable()
{
    if (_folder)
        ::closedir(_folder);
}

std::optional<std::vector<ProcessRecord>> LinuxProcessTable::processes()
{
    if (!_folder)
        return std::nullopt;
    ::rewinddir(_folder);
    std::vector<ProcessRecord> found;
    found.reserve(_known.size());
    _next.clear();
    std::size_t position = 0;
    while (const dirent* entry = ::readdir(_folder)) {
        const std::int64_t processId = processIdOf(entry->d_name);
        if (processId <= 0)
            continue;
        Known process = take(processId, entry->d_ino, position);
        look(process);
        if (process.isProgram)
            found.push_back(process.record);
        _next.push_back(std::move(process));
    }
    _known.swap(_next);
    if (_known.empty())
        return std::nullopt;
    return found;
}

LinuxProcessTable::Known LinuxProcessTable::take(std::int64_t processId, std::uint64_t incarnation,
                                                 std::size_t& position)
{
    while (position < _known.size() && _known[position].record.processId < processId)
        ++position;
    if (position < _known.size() && _known[position].record.processId == processId &&
        _known[position].incarnation == incarnation)
        return std::move(_known[position++]);
    Known process;
    process.incarnation = incarnation;
    process.record.processId = processId;
    return process;
}

void LinuxProcessTable::look(Known& process) const
{
    // Not all at once: the process ids differ.
    const auto turn = static_cast<unsigned>(process.record.processId) + process.readings;
    const bool thoroughly = process.readings < YoungReadings || turn % ReadingsBetweenLooks == 0;
    ++process.readings;
    if (thoroughly)
        lookAtOwner(process);
    if (process.isReadable || thoroughly) {
        process.isProgram = lookAtProgramFile(process);
        if (!process.isReadable)
            lookAtKernelField(process);
    }
}

void LinuxProcessTable::lookAtOwner(Known& process) const
{
    Name name;
    struct stat status {};
    if (::fstatat(::dirfd(_folder), nameBelow(name, process.record.processId, ""), &status, 0) == 0)
        process.record.userId = status.st_uid;
}

/// False for what runs no program file (any more): a kernel thread, a process that ended, one that is not ours to read.
bool LinuxProcessTable::lookAtProgramFile(Known& process) const
{
    Name name;
    std::array<char, PATH_MAX> path;
    const ssize_t length =
        ::readlinkat(::dirfd(_folder), nameBelow(name, process.record.processId, "exe"), path.data(), path.size());
    process.isReadable = length > 0 || errno == ENOENT || errno == ESRCH;
    if (length <= 0)
        return false;
    const QByteArrayView file = fileNameIn(QByteArrayView(path.data(), length));
    if (process.isProgram && !process.record.commandIsShortened && process.file == file)
        return true;
    process.file = file.toByteArray();
    process.record.command = QFile::decodeName(process.file).left(LongestCommand);
    process.record.commandIsShortened = false;
    return true;
}

void LinuxProcessTable::lookAtKernelField(Known& process) const
{
    Name name;
    const Descriptor file(
        ::openat(::dirfd(_folder), nameBelow(name, process.record.processId, "stat"), O_RDONLY | O_CLOEXEC));
    std::array<char, 512> line;
    const ssize_t length = file.isOpen() ? ::read(file.get(), line.data(), line.size()) : -1;
    const auto parsed = parseKernelLine(QByteArrayView(line.data(), std::max<ssize_t>(length, 0)));
    process.isProgram = parsed && parsed->state != 'Z' && parsed->state != 'X' && (parsed->flags & KernelThread) == 0;
    if (!process.isProgram || (process.record.commandIsShortened && process.file == parsed->command))
        return;
    process.file = parsed->command.toByteArray();
    process.record.command = QFile::decodeName(process.file);
    process.record.commandIsShortened = true;
}

bool LinuxProcessTable::interrupt(std::int64_t processId)
{
    return sendSignal(processId, SIGINT);
}

bool LinuxProcessTable::terminate(std::int64_t processId)
{
    return sendSignal(processId, SIGTERM);
}

std::int64_t LinuxProcessTable::ownProcessId() const
{
    return ::getpid();
}

} // namespace quarry
