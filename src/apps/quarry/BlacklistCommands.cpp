#include "apps/quarry/CommandLine.h"
#include "apps/quarry/ExpressionFault.h"
#include "apps/quarry/Output.h"
#include "blacklist/BlacklistStore.h"

#include <QJsonArray>

namespace quarry {

namespace {

constexpr qsizetype LongestAddress = 100;

struct Options {
    QStringList rules;
    std::optional<QString> type;
    bool caseSensitive = false;
    bool disabled = false;
    QString address;
    bool json = false;
};

struct TypeName {
    qint64 type;
    const char* name;
};
constexpr TypeName TypeNames[] = {{BlacklistType::Text, "text"},
                                  {BlacklistType::Domain, "domain"},
                                  {BlacklistType::FileType, "file"},
                                  {BlacklistType::RegularExpression, "regex"}};

QStringList typeNames()
{
    QStringList names;
    for (const TypeName& each : TypeNames)
        names.append(QLatin1String(each.name));
    return names;
}

QString nameOfType(qint64 type)
{
    for (const TypeName& each : TypeNames) {
        if (each.type == type)
            return QLatin1String(each.name);
    }
    return QString::number(type);
}

qint64 typeNamed(const QString& name)
{
    for (const TypeName& each : TypeNames) {
        if (name == QLatin1String(each.name))
            return each.type;
    }
    return 0;
}

/// `domain rule "ads.example"`
QString described(const BlacklistRule& rule)
{
    return QStringLiteral("%1 rule \"%2\"").arg(nameOfType(rule.type), shown(rule.rule.value_or(QString())));
}

QJsonObject jsonOfRule(const BlacklistRule& rule, qsizetype number)
{
    return {{QStringLiteral("number"), qint64(number)},
            {QStringLiteral("type"), nameOfType(rule.type)},
            {QStringLiteral("rule"), rule.rule.value_or(QString())},
            {QStringLiteral("enabled"), rule.state},
            {QStringLiteral("caseSensitive"), rule.caseSensitive}};
}

/// The list as it is in the file; empty when there is none yet.
struct LoadedRules {
    BlacklistManager manager;
    Outcome fault;
};

LoadedRules load(Session& session)
{
    if (Outcome home = session.checkHome(); !home.ok())
        return {{}, home};
    QString fault;
    LoadedRules loaded;
    loaded.manager = BlacklistManager::initWithDatabase(session.files(), session.home().blacklistFile(), &fault);
    if (!fault.isEmpty())
        loaded.fault = Outcome::failed(fault + QStringLiteral("\nNothing was changed. Put a backup in its place, or "
                                                              "move the file away to begin with an empty list."));
    return loaded;
}

/// Applies one change to the list that is in the file by then.
Outcome change(Session& session, const std::function<Outcome(BlacklistManager&)>& apply)
{
    // A file that makes no sense is the user's to judge; here nothing replaces it.
    if (const LoadedRules loaded = load(session); !loaded.fault.ok())
        return loaded.fault;
    Outcome outcome;
    const QString error = BlacklistStore(session.home(), session.files()).change([&](BlacklistManager& list) {
        outcome = apply(list);
        return outcome.ok();
    });
    return error.isEmpty() ? outcome : Outcome::failed(error);
}

Outcome list(Session& session, const Options& options)
{
    const LoadedRules loaded = load(session);
    if (!loaded.fault.ok())
        return loaded.fault;
    QJsonArray array;
    QStringList lines;
    for (const BlacklistRule& rule : loaded.manager.rules()) {
        const qsizetype number = array.size() + 1;
        array.append(jsonOfRule(rule, number));
        QString line = QStringLiteral("%1  %2 %3 %4")
                           .arg(number, 4)
                           .arg(nameOfType(rule.type), -6)
                           .arg(rule.state ? QStringLiteral("on") : QStringLiteral("off"), -3)
                           .arg(shown(rule.rule.value_or(QString())));
        if (rule.caseSensitive)
            line += faint(QStringLiteral("  (with case)"));
        lines.append(line);
    }
    if (options.json)
        return Outcome::done(jsonText({{QStringLiteral("rules"), array}}));
    return Outcome::done(lines.isEmpty() ? QStringLiteral("The blacklist is empty") : lines.join(u'\n'));
}

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
    const qint64 type = typeNamed(options.type.value_or(QStringLiteral("text")));
    for (const QString& rule : options.rules) {
        if (Outcome fault = faultOfRule(rule, type); !fault.ok())
            return fault;
    }
    return change(session, [&](BlacklistManager& manager) {
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
    return change(session, [&](BlacklistManager& manager) {
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

/// A test of one address says on the spot what is wrong with the rules.
class Complaints final : public Logger {
public:
    void logString(const QString& text) override { writeError(QStringLiteral("quarry: %1\n").arg(shown(text))); }
};

Outcome test(Session& session, const Options& options)
{
    const LoadedRules loaded = load(session);
    if (!loaded.fault.ok())
        return loaded.fault;
    const QList<BlacklistRule> rules = loaded.manager.rules();
    Complaints complaints;
    const std::optional<qsizetype> caught =
        BlacklistMatcher(rules, BlacklistMatcher::Which::Active).ruleCatching(options.address, complaints);
    if (options.json) {
        const QJsonValue rule = caught ? QJsonValue(jsonOfRule(rules[*caught], *caught + 1)) : QJsonValue();
        return Outcome::done(jsonText({{QStringLiteral("url"), options.address},
                                       {QStringLiteral("caught"), caught.has_value()},
                                       {QStringLiteral("rule"), rule}}));
    }
    const QString address = shownWithin(options.address, LongestAddress);
    if (!caught)
        return Outcome::done(QStringLiteral("No rule catches ") + address);
    return Outcome::done(
        QStringLiteral("%1 is caught by %2 (%3)").arg(address, described(rules[*caught])).arg(*caught + 1));
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
        .choice(QStringLiteral("--type"), options->type, typeNames(),
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
    blacklist
        .command(QStringLiteral("list"), QStringLiteral("List the rules in the order in which they are tried"),
                 {QStringLiteral("quarry blacklist list"), QStringLiteral("quarry blacklist list --json")})
        .flag(QStringLiteral("--json"), options->json, QStringLiteral("For programs"))
        .action([options](Session& session) { return list(session, *options); });
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
    blacklist
        .command(QStringLiteral("test"), QStringLiteral("Say which rule catches an address"),
                 {QStringLiteral("quarry blacklist test http://www.ads.example/page")})
        .argument(QStringLiteral("url"), options->address, QStringLiteral("The address"))
        .flag(QStringLiteral("--json"), options->json, QStringLiteral("For programs"))
        .action([options](Session& session) { return test(session, *options); });
}

} // namespace quarry
