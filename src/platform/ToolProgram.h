#pragma once

#include "platform/SealedFile.h"

#include <QString>
#include <QStringList>

namespace quarry {

/// A program that is run to its end now and then. Its file is held open, so that it can still be run when it was moved
/// or deleted meanwhile, as an install does with its own helper. Thread-safe.
class ToolProgram final {
public:
    explicit ToolProgram(const QString& path);
    ~ToolProgram();
    ToolProgram(const ToolProgram&) = delete;
    ToolProgram& operator=(const ToolProgram&) = delete;

    /// The file was there and could be opened.
    [[nodiscard]] bool isThere() const { return _descriptor >= 0; }
    /// Waits for the program's end. Its input is empty, its output is this program's. With an image, that file is open
    /// in the program as passedFile(). Answers its exit status, or -1 when it did not start or was killed.
    [[nodiscard]] int run(const QStringList& arguments, const SealedFile* image = nullptr) const;

    /// "/dev/fd/3"
    [[nodiscard]] static QString passedFile() { return QStringLiteral("/dev/fd/3"); }

private:
    QByteArray _name; ///< What the program is told as its own name.
    int _descriptor = -1;
};

} // namespace quarry
