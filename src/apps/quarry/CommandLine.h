#pragma once

#include "apps/quarry/Outcome.h"
#include "apps/quarry/Session.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

namespace quarry {

/// One command while it is being described: its arguments and options fill variables, which must live as long as
/// the command line (keep them in a shared block that the action holds). The one place that knows the parser is
/// CommandLine.cpp.
class Command final {
public:
    using Action = std::function<Outcome(Session&)>;

    // Arguments by position, in the order described.
    Command& argument(const QString& name, QString& value, const QString& help);
    Command& optionalArgument(const QString& name, std::optional<QString>& value, const QString& help);
    Command& arguments(const QString& name, QStringList& values, const QString& help);
    Command& optionalArguments(const QString& name, QStringList& values, const QString& help);

    Command& option(const QString& flags, const QString& valueName, std::optional<QString>& value, const QString& help);
    Command& option(const QString& flags, const QString& valueName, QStringList& values, const QString& help);
    /// A whole number within bounds.
    Command& number(const QString& flags, const QString& valueName, std::optional<qint64>& value, qint64 least,
                    qint64 most, const QString& help);
    /// One of the names.
    Command& choice(const QString& flags, std::optional<QString>& value, const QStringList& names, const QString& help);
    Command& flag(const QString& flags, bool& value, const QString& help);

    /// It may take long, and can be broken off anywhere: it ends when every program of the product is asked to quit. A
    /// command with something to put in order first listens by itself.
    Command& takesLong();
    /// What is done when the command was given and everything fits.
    void action(Action action);

    /// Makes this command one that only holds others, and describes one of them; its examples are whole lines.
    [[nodiscard]] Command command(const QString& name, const QString& summary, const QStringList& examples);

private:
    friend class CommandLine;
    struct Impl;
    explicit Command(std::shared_ptr<Impl> impl) : _impl(std::move(impl)) {}
    std::shared_ptr<Impl> _impl;
};

/// The program's command line: its commands, their help, and the run of the one that was given.
class CommandLine final {
public:
    explicit CommandLine(const QString& version);
    ~CommandLine();
    CommandLine(const CommandLine&) = delete;
    CommandLine& operator=(const CommandLine&) = delete;

    /// A command; its examples are whole lines. Every command takes --home.
    [[nodiscard]] Command command(const QString& group, const QString& name, const QString& summary,
                                  const QStringList& examples);
    /// Parses, runs, says what there is to say. Returns the exit status.
    [[nodiscard]] int run(int argc, char** argv);

private:
    struct Impl;
    std::unique_ptr<Impl> _impl;
};

// Each file of commands describes its own.
void addListCommands(CommandLine& line);
void addTreeCommands(CommandLine& line);
void addMakingCommands(CommandLine& line);
void addCombineCommand(CommandLine& line);
void addResultCommands(CommandLine& line);
void addItemCommands(CommandLine& line);
void addOfflineCommands(CommandLine& line);
void addRefreshCommand(CommandLine& line);
void addSettingsCommands(CommandLine& line);
void addScheduleCommand(CommandLine& line);
void addAgentCommands(CommandLine& line);
void addUpdateCommand(CommandLine& line);
void addServicesCommand(CommandLine& line);
void addExportCommand(CommandLine& line);
void addImportCommand(CommandLine& line);
void addBlacklistCommands(CommandLine& line);
void addLogCommand(CommandLine& line);

} // namespace quarry
