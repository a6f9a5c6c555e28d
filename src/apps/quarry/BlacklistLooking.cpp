#include "apps/quarry/BlacklistRules.h"
#include "apps/quarry/Output.h"

#include <QJsonArray>

namespace quarry {

namespace {

constexpr qsizetype LongestAddress = 100;

struct Options {
    QString address;
    bool json = false;
};

QJsonObject jsonOfRule(const BlacklistRule& rule, qsizetype number)
{
    return {{QStringLiteral("number"), qint64(number)},
            {QStringLiteral("type"), nameOfRuleType(rule.type)},
            {QStringLiteral("rule"), rule.rule.value_or(QString())},
            {QStringLiteral("enabled"), rule.state},
            {QStringLiteral("caseSensitive"), rule.caseSensitive}};
}

Outcome list(Session& session, const Options& options)
{
    const LoadedRules loaded = loadRules(session);
    if (!loaded.fault.ok())
        return loaded.fault;
    QJsonArray array;
    QStringList lines;
    for (const BlacklistRule& rule : loaded.manager.rules()) {
        const qsizetype number = array.size() + 1;
        array.append(jsonOfRule(rule, number));
        QString line = QStringLiteral("%1  %2 %3 %4")
                           .arg(number, 4)
                           .arg(nameOfRuleType(rule.type), -6)
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

/// A test of one address says on the spot what is wrong with the rules.
class Complaints final : public Logger {
public:
    void logString(const QString& text) override { writeError(QStringLiteral("quarry: %1\n").arg(shown(text))); }
};

Outcome test(Session& session, const Options& options)
{
    const LoadedRules loaded = loadRules(session);
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

} // namespace

void addBlacklistLooking(Command& blacklist)
{
    const auto options = std::make_shared<Options>();
    blacklist
        .command(QStringLiteral("list"), QStringLiteral("List the rules in the order in which they are tried"),
                 {QStringLiteral("quarry blacklist list"), QStringLiteral("quarry blacklist list --json")})
        .flag(QStringLiteral("--json"), options->json, QStringLiteral("For programs"))
        .action([options](Session& session) { return list(session, *options); });
    blacklist
        .command(QStringLiteral("test"), QStringLiteral("Say which rule catches an address"),
                 {QStringLiteral("quarry blacklist test http://www.ads.example/page")})
        .argument(QStringLiteral("url"), options->address, QStringLiteral("The address"))
        .flag(QStringLiteral("--json"), options->json, QStringLiteral("For programs"))
        .action([options](Session& session) { return test(session, *options); });
}

} // namespace quarry
