#include "apps/quarry/BlacklistRules.h"

#include "apps/quarry/Output.h"

namespace quarry {

namespace {

struct TypeName {
    qint64 type;
    const char* name;
};
constexpr TypeName TypeNames[] = {{BlacklistType::Text, "text"},
                                  {BlacklistType::Domain, "domain"},
                                  {BlacklistType::FileType, "file"},
                                  {BlacklistType::RegularExpression, "regex"}};

} // namespace

QStringList ruleTypeNames()
{
    QStringList names;
    for (const TypeName& each : TypeNames)
        names.append(QLatin1String(each.name));
    return names;
}

QString nameOfRuleType(qint64 type)
{
    for (const TypeName& each : TypeNames) {
        if (each.type == type)
            return QLatin1String(each.name);
    }
    return QString::number(type);
}

qint64 ruleTypeNamed(const QString& name)
{
    for (const TypeName& each : TypeNames) {
        if (name == QLatin1String(each.name))
            return each.type;
    }
    return 0;
}

QString described(const BlacklistRule& rule)
{
    return QStringLiteral("%1 rule \"%2\"").arg(nameOfRuleType(rule.type), shown(rule.rule.value_or(QString())));
}

LoadedRules loadRules(Session& session)
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

Outcome changeRules(Session& session, const std::function<Outcome(BlacklistManager&)>& apply)
{
    // A file that makes no sense is the user's to judge; here nothing replaces it.
    if (const LoadedRules loaded = loadRules(session); !loaded.fault.ok())
        return loaded.fault;
    Outcome outcome;
    const QString error = BlacklistStore(session.home(), session.files()).change([&](BlacklistManager& list) {
        outcome = apply(list);
        return outcome.ok();
    });
    return error.isEmpty() ? outcome : Outcome::failed(error);
}

} // namespace quarry
