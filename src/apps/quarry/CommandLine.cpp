#include "apps/quarry/CommandLine.h"

#include "apps/quarry/Output.h"
#include "apps/quarry/QuitWatch.h"

#include <CLI/CLI.hpp>
#include <cstdlib>

namespace quarry {

namespace {

QStringList qtTexts(const std::vector<std::string>& texts)
{
    QStringList out;
    for (const std::string& text : texts)
        out.append(QString::fromStdString(text));
    return out;
}

/// Nothing is lost: a file that is being written replaces the one before it only when it is complete.
Outcome endingWithProduct(const Command::Action& action, Session& session)
{
    const QuitWatch watch([] {
        writeError(QStringLiteral("quarry: stopped; every program of QuarrySpotter was asked to quit\n"));
        std::quick_exit(static_cast<int>(Outcome::Exit::Failed));
    });
    return action(session);
}

} // namespace

struct Command::Impl {
    CLI::App* app = nullptr;
    Action* chosen = nullptr;
    std::function<void(CLI::App*)> addHome;
    bool takesLong = false;

    /// A command below this one.
    [[nodiscard]] std::shared_ptr<Impl> below(const QString& name, const QString& summary,
                                              const QStringList& examples) const
    {
        auto impl = std::make_shared<Impl>(*this);
        impl->app = app->add_subcommand(name.toStdString(), summary.toStdString());
        impl->app->footer("Examples:\n  " + examples.join(QLatin1String("\n  ")).toStdString());
        addHome(impl->app);
        return impl;
    }

    CLI::Option* one(const QString& flags, const QString& help, std::function<void(const QString&)> take) const
    {
        const auto takeText = [take = std::move(take)](const std::string& text) { take(QString::fromStdString(text)); };
        return app->add_option_function<std::string>(flags.toStdString(), takeText, help.toStdString());
    }
    CLI::Option* many(const QString& flags, QStringList& values, const QString& help) const
    {
        return app->add_option_function<std::vector<std::string>>(
            flags.toStdString(), [&values](const std::vector<std::string>& texts) { values = qtTexts(texts); },
            help.toStdString());
    }
};

Command& Command::argument(const QString& name, QString& value, const QString& help)
{
    _impl->one(name, help, [&value](const QString& text) { value = text; })->required()->type_name("");
    return *this;
}

Command& Command::optionalArgument(const QString& name, std::optional<QString>& value, const QString& help)
{
    _impl->one(name, help, [&value](const QString& text) { value = text; })->type_name("");
    return *this;
}

Command& Command::arguments(const QString& name, QStringList& values, const QString& help)
{
    _impl->many(name, values, help)->required()->type_name("");
    return *this;
}

Command& Command::optionalArguments(const QString& name, QStringList& values, const QString& help)
{
    _impl->many(name, values, help)->type_name("");
    return *this;
}

Command& Command::option(const QString& flags, const QString& valueName, std::optional<QString>& value,
                         const QString& help)
{
    _impl->one(flags, help, [&value](const QString& text) { value = text; })->type_name(valueName.toStdString());
    return *this;
}

Command& Command::option(const QString& flags, const QString& valueName, QStringList& values, const QString& help)
{
    _impl->many(flags, values, help)->type_name(valueName.toStdString())->allow_extra_args(false);
    return *this;
}

Command& Command::number(const QString& flags, const QString& valueName, std::optional<qint64>& value, qint64 least,
                         qint64 most, const QString& help)
{
    const auto check = [least, most](const std::string& text) -> std::string {
        bool ok = false;
        const qint64 number = QString::fromStdString(text).toLongLong(&ok);
        return ok && number >= least && number <= most
                   ? std::string()
                   : "must be a whole number from " + std::to_string(least) + " to " + std::to_string(most);
    };
    _impl->one(flags, help, [&value](const QString& text) { value = text.toLongLong(); })
        ->check(check)
        ->type_name(valueName.toStdString());
    return *this;
}

Command& Command::choice(const QString& flags, std::optional<QString>& value, const QStringList& names,
                         const QString& help)
{
    const auto check = [names](const std::string& text) -> std::string {
        return names.contains(QString::fromStdString(text))
                   ? std::string()
                   : "must be one of " + names.join(QLatin1String(", ")).toStdString();
    };
    _impl->one(flags, help, [&value](const QString& text) { value = text; })
        ->check(check)
        ->type_name(names.join(u'|').toStdString());
    return *this;
}

Command& Command::flag(const QString& flags, bool& value, const QString& help)
{
    _impl->app->add_flag(flags.toStdString(), value, help.toStdString());
    return *this;
}

Command& Command::takesLong()
{
    _impl->takesLong = true;
    return *this;
}

void Command::action(Action action)
{
    if (_impl->takesLong)
        action = [action = std::move(action)](Session& session) { return endingWithProduct(action, session); };
    _impl->app->callback([action = std::move(action), chosen = _impl->chosen] { *chosen = action; });
}

Command Command::command(const QString& name, const QString& summary, const QStringList& examples)
{
    _impl->app->require_subcommand(1);
    return Command(_impl->below(name, summary, examples));
}

struct CommandLine::Impl {
    CLI::App app{"Watches web searches: saved queries, their results, and what is new.", "quarry"};
    std::optional<QString> home;
    Command::Action chosen;

    void addHome(CLI::App* to)
    {
        to->add_option_function<std::string>(
              "--home", [this](const std::string& text) { home = QString::fromStdString(text); },
              "The home folder to use instead of your own")
            ->type_name("DIR");
    }

    /// Help goes to standard output, complaints to standard error with the status for wrong use.
    int answerParse(const CLI::ParseError& error, const QString& firstArgument) const
    {
        if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success))
            return app.exit(error);
        const auto given = app.get_subcommands();
        QString text = QString::fromUtf8(error.what());
        QString hint = QStringLiteral("see quarry --help");
        if (!given.empty()) {
            const QString name = QString::fromStdString(given.front()->get_name());
            const bool isGroup = given.front()->get_require_subcommand_min() > 0;
            if (isGroup && given.front()->get_subcommands().empty())
                text = QStringLiteral("%1: a command is missing").arg(name);
            hint = QStringLiteral("see quarry %1 --help").arg(name);
        } else if (firstArgument.isEmpty() || firstArgument.startsWith(u'-'))
            text = QStringLiteral("a command is missing");
        else
            text = QStringLiteral("there is no command \"%1\"").arg(firstArgument);
        writeError(QStringLiteral("quarry: %1\n%2\n").arg(shown(text), hint));
        return static_cast<int>(Outcome::Exit::WrongUse);
    }
};

CommandLine::CommandLine(const QString& version) : _impl(std::make_unique<Impl>())
{
    CLI::App& app = _impl->app;
    app.set_version_flag("--version", "quarry " + version.toStdString());
    app.require_subcommand(1);
    app.get_formatter()->column_width(28);
    app.footer("A query or folder is named by its title, its ID (a UUID), or the beginning of its ID.\n"
               "quarry COMMAND --help explains a command, with examples.\n"
               "Exit status: 0 done, 1 failed, 2 wrong use.");
    _impl->addHome(&app);
}

CommandLine::~CommandLine() = default;

Command CommandLine::command(const QString& group, const QString& name, const QString& summary,
                             const QStringList& examples)
{
    const Command::Impl top{&_impl->app, &_impl->chosen, [this](CLI::App* to) { _impl->addHome(to); }};
    std::shared_ptr<Command::Impl> impl = top.below(name, summary, examples);
    impl->app->group(group.toStdString());
    return Command(std::move(impl));
}

int CommandLine::run(int argc, char** argv)
{
    try {
        _impl->app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return _impl->answerParse(error, argc > 1 ? QString::fromLocal8Bit(argv[1]) : QString());
    }
    if (_impl->home && _impl->home->isEmpty()) {
        writeError(QStringLiteral("quarry: --home is empty\n"));
        return static_cast<int>(Outcome::Exit::WrongUse);
    }
    Session session(_impl->home.value_or(HomeFolder::ofUser().path()));
    const Outcome outcome = _impl->chosen(session);
    if (outcome.ok() && !outcome.text.isEmpty())
        writeOut(outcome.text + u'\n');
    else if (!outcome.ok())
        writeError(QStringLiteral("quarry: ") + outcome.text + u'\n');
    if (outcome.ok() && !finishOut()) {
        writeError(QStringLiteral("quarry: the output could not be written\n"));
        return static_cast<int>(Outcome::Exit::Failed);
    }
    return static_cast<int>(outcome.exit);
}

} // namespace quarry
