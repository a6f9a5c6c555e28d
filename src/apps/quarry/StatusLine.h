#pragma once

#include <QString>

namespace quarry {

/// What a long command says while it works, on standard output: lines that stay, and on a terminal one line more that
/// shows what is being done right now. Main thread only.
class StatusLine final {
public:
    /// A silent one says nothing.
    enum class Voice { Silent, Lines };
    explicit StatusLine(Voice voice);

    /// A line that stays.
    void say(const QString& line);
    /// What is being done; replaces what was shown before.
    void show(const QString& status);
    /// Takes away what is shown: before anything else is written.
    void clear();

private:
    bool _saysLines;
    bool _showsStatus;
    bool _hasStatus = false;
};

} // namespace quarry
