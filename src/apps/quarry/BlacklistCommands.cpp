#include "apps/quarry/BlacklistRules.h"
#include "apps/quarry/ExpressionFault.h"
#include "apps/quarry/Output.h"

namespace quarry {

namespace {

struct Options {
    QStringList rules;
    std::optional<QString> type;
    bool caseSensitive = false;
    bool disabled = false;
};

/// What would make the rule useless.
Outcome faultOfRule(const QString& rule, qint64 type)
{
    if (rule.trimmed().isEmpty())
        return Outcome::wrongUse(QStringLiteral("a rule needs a text"));
    if (type == BlacklistType::Domain && hostForBlacklist(rule).isEmpty())
        return Outcome::wrongUse(QStringLiteral("\"%1\" names no host").arg(shown(rule)));
    if (type == BlacklistType::RegularExpression) {
        if (const auto fault = expressionFault(rule))
            return Outcome::wrongUse(*fault);
    }
    return Outcome::done();
}

Outcome add(Session& session, const Options& options)
{
    const qint64 type = ruleTypeNamed(options.type.value_or(QStringLiteral("text")));
    for (const QString& rule : options.rules) {
        if (Outcome fault = faultOfRule(rule, type); !fault.ok())
            return fault;
    }
    return changeRules(session, [&](BlacklistManager& manager) {
        QStringList lines;
        for (const QString& text : options.rules) {
            const BlacklistRule rule{text, type, !options.disabled, options.caseSensitive};
            if (manager.rules().contains(rule)) {
                lines.append(QStringLiteral("There already: ") + described(rule));
                continue;
            }
            manager.addToBlacklist(BlacklistFilter::initWithRule(text, type, rule.state, rule.caseSensitive));
            lines.append(QStringLiteral("Added ") + described(rule));
        }
        return Outcome::done(lines.join(u'\n'));
    });
}

/// The rules of that text; without one, the rule of that number.
QList<BlacklistFilterPtr> rulesNamed(const BlacklistManager& manager, const QString& name)
{
    QList<BlacklistFilterPtr> found;
    for (qsizetype i = 0; i < manager.filtersCount(); ++i) {
        if (manager.filterAtIndex(i)->rule() == name)
            found.append(manager.filterAtIndex(i));
    }
    bool isNumber = false;
    const qsizetype number = name.toInt(&isNumber);
    if (const auto filter = isNumber ? manager.filterAtIndex(number - 1) : nullptr; found.isEmpty() && filter)
        found.append(filter);
    return found;
}

using Apply = std::function<void(BlacklistManager&, const BlacklistFilterPtr&)>;

/// Does something to each rule named, in one edit; nothing when a name fits none.
Outcome applyTo(Session& session, const Options& options, const QString& verb, const Apply& apply)
{
    return changeRules(session, [&](BlacklistManager& manager) {
        QList<BlacklistFilterPtr> all;
        for (const QString& name : options.rules) {
            const QList<BlacklistFilterPtr> found = rulesNamed(manager, name);
            if (found.isEmpty())
                return Outcome::wrongUse(QStringLiteral("there is no rule \"%1\"").arg(shown(name)));
            for (const BlacklistFilterPtr& filter : found) {
                if (!all.contains(filter))
                    all.append(filter);
            }
        }
        QStringList lines;
        for (const BlacklistFilterPtr& filter : all) {
            lines.append(verb + described(filter->fields()));
            apply(manager, filter);
        }
        return Outcome::done(lines.join(u'\n'));
    });
}

void addAddCommand(Command& blacklist, const std::shared_ptr<Options>& options)
{
    blacklist
        .command(QStringLiteral("add"), QStringLiteral("Add rules"),
                 {QStringLiteral("quarry blacklist add sponsored            # anywhere in the address"),
                  QStringLiteral("quarry blacklist add --type domain ads.example"),
                  QStringLiteral("quarry blacklist add --type file exe msi"),
                  QStringLiteral("quarry blacklist add --type regex '[?&]utm_[a-z]+='")})
        .arguments(QStringLiteral("rules"), options->rules, QStringLiteral("What to look for"))
        .choice(QStringLiteral("--type"), options->type, ruleTypeNames(),
                QStringLiteral("What the rules are: a text (also without this), a host with everything below and "
                               "above it, a file extension, a POSIX extended expression"))
        .flag(QStringLiteral("--case"), options->caseSensitive, QStringLiteral("Case counts"))
        .flag(QStringLiteral("--disabled"), options->disabled, QStringLiteral("Without putting them in force"))
        .action([options](Session& session) { return add(session, *options); });
}

struct Edit {
    const char* name;
    const char* summary;
    const char* verb;
    Apply apply;
};

void addEditCommand(Command& blacklist, const std::shared_ptr<Options>& options, const Edit& edit)
{
    const QString name = QLatin1String(edit.name);
    blacklist
        .command(name, QLatin1String(edit.summary),
                 {QStringLiteral("quarry blacklist %1 ads.example").arg(name),
                  QStringLiteral("quarry blacklist %1 2 3").arg(name)})
        .arguments(QStringLiteral("rules"), options->rules,
                   QStringLiteral("Rules by their text, or by their number in the list"))
        .action([options, edit](Session& session) {
            return applyTo(session, *options, QLatin1String(edit.verb), edit.apply);
        });
}

} // namespace

void addBlacklistCommands(CommandLine& line)
{
    const auto options = std::make_shared<Options>();
    Command blacklist = line.command(QStringLiteral("Settings"), QStringLiteral("blacklist"),
                                     QStringLiteral("Show or change the rules for addresses that never become results"),
                                     {QStringLiteral("quarry blacklist list"),
                                      QStringLiteral("quarry blacklist add --type domain ads.example"),
                                      QStringLiteral("quarry blacklist test http://www.ads.example/page")});
    addBlacklistLooking(blacklist);
    addAddCommand(blacklist, options);
    const auto switchTo = [](bool state) {
        return [state](BlacklistManager& list, const BlacklistFilterPtr& filter) { list.setState(state, filter); };
    };
    const auto removeRule = [](BlacklistManager& list, const BlacklistFilterPtr& filter) {
        list.removeFromBlacklist(filter);
    };
    addEditCommand(blacklist, options, {"remove", "Remove rules", "Removed ", removeRule});
    addEditCommand(blacklist, options, {"enable", "Put rules in force", "Enabled ", switchTo(true)});
    addEditCommand(blacklist, options, {"disable", "Keep rules, but not in force", "Disabled ", switchTo(false)});
}

} // namespace quarry
