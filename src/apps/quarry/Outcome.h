#pragma once

#include <QString>

namespace quarry {

/// How a command ended, and what it has to say: on standard output when it is done, on standard error otherwise.
struct Outcome {
    enum class Exit { Done = 0, Failed = 1, WrongUse = 2 };

    Exit exit = Exit::Done;
    QString text; ///< Without a newline at the end; may be empty.

    [[nodiscard]] bool ok() const { return exit == Exit::Done; }

    [[nodiscard]] static Outcome done(const QString& text = {}) { return {Exit::Done, text}; }
    [[nodiscard]] static Outcome failed(const QString& text) { return {Exit::Failed, text}; }
    [[nodiscard]] static Outcome wrongUse(const QString& text) { return {Exit::WrongUse, text}; }
};

} // namespace quarry
