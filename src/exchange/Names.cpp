#include "exchange/Names.h"

#include "engines/SearchService.h"

namespace quarry {

namespace {

constexpr QueryKind AllKinds[] = {QueryKind::Plain, QueryKind::Advanced, QueryKind::Combined, QueryKind::Folder};

} // namespace

QString kindName(QueryKind kind)
{
    switch (kind) {
    case QueryKind::Plain:
        return QStringLiteral("plain");
    case QueryKind::Advanced:
        return QStringLiteral("advanced");
    case QueryKind::Combined:
        return QStringLiteral("combined");
    case QueryKind::Folder:
        break;
    }
    return QStringLiteral("folder");
}

std::optional<QueryKind> kindNamed(const QString& name)
{
    for (const QueryKind kind : AllKinds) {
        if (kindName(kind) == name)
            return kind;
    }
    return std::nullopt;
}

QStringList wordsModeNames()
{
    return {QStringLiteral("any"), QStringLiteral("exact"), QStringLiteral("in-page")};
}

QString wordsModeName(qint64 wordsRestriction)
{
    if (wordsRestriction == 0)
        return QStringLiteral("none");
    const QStringList names = wordsModeNames();
    return wordsRestriction > 0 && wordsRestriction <= names.size() ? names.at(wordsRestriction - 1)
                                                                    : QString::number(wordsRestriction);
}

std::optional<qint64> wordsModeNamed(const QString& name)
{
    if (name == QLatin1String("none"))
        return 0;
    if (const qsizetype place = wordsModeNames().indexOf(name); place >= 0)
        return place + 1;
    bool isNumber = false;
    const qint64 number = name.toLongLong(&isNumber);
    return isNumber ? std::optional(number) : std::nullopt;
}

QString engineName(const QString& engineId)
{
    for (const SearchService service : AllSearchServices) {
        if (!engineId.isEmpty() && searchServiceIdentifier(service) == engineId)
            return searchServiceName(service);
    }
    return engineId;
}

} // namespace quarry
