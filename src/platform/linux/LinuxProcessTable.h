#pragma once

#include "platform/ProcessTable.h"

#include <QByteArray>

#include <dirent.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace quarry {

/// The process table from /proc, made to be read every second all day. Programs that run under the reader's own rights
/// are looked at anew each time, with one system call a process. Of the others only a few can be told more about, at
/// more cost, and they do not come and go: what was found is kept, and a program that such a process takes on late in
/// its life may show a few readings later. Kernel threads and processes that ended, but that nobody waited for, are no
/// processes here.
class LinuxProcessTable final : public ProcessTable {
public:
    LinuxProcessTable();
    LinuxProcessTable(const LinuxProcessTable&) = delete;
    LinuxProcessTable& operator=(const LinuxProcessTable&) = delete;
    ~LinuxProcessTable() override;

    [[nodiscard]] std::optional<std::vector<ProcessRecord>> processes() override;
    bool interrupt(std::int64_t processId) override;
    bool terminate(std::int64_t processId) override;
    [[nodiscard]] std::int64_t ownProcessId() const override;

private:
    /// What is remembered of a process from one reading to the next.
    struct Known {
        std::uint64_t incarnation = 0; ///< Of its folder: another process of the same number has another one.
        unsigned readings = 0;
        bool isReadable = false; ///< Its program file can be told.
        bool isProgram = false;
        QByteArray file; ///< The program file's name as read.
        ProcessRecord record;
    };

    /// What was known about that process; the readings come in the same order each time.
    [[nodiscard]] Known take(std::int64_t processId, std::uint64_t incarnation, std::size_t& position);
    void look(Known& process) const;
    void lookAtOwner(Known& process) const;
    [[nodiscard]] bool lookAtProgramFile(Known& process) const;
    void lookAtKernelField(Known& process) const;

    DIR* _folder;
    std::vector<Known> _known; ///< Of the last reading, in its order.
    std::vector<Known> _next;  ///< Of the reading under way.
};

} // namespace quarry
