#include "apps/quarry/Session.h"

#include <QFileInfo>

namespace quarry {

namespace {

/// Why a database that does not load is left alone, in lines for a person.
QString damagedText(const QueryDatabaseEngine& engine)
{
    QString text = QStringLiteral("the database cannot be read: ") + engine.lastError();
    if (!engine.damagedCopy().isEmpty())
        text += QStringLiteral("\nA copy was put aside: ") + engine.damagedCopy();
    return text + QStringLiteral("\nNothing was changed. Put a backup in its place, or move the file away to begin "
                                 "with an empty database.");
}

} // namespace

Outcome Session::checkHome() const
{
    const QFileInfo home(_home.path());
    if (!home.exists())
        return Outcome::failed(QStringLiteral("there is no home folder %1").arg(_home.path()));
    if (!home.isDir())
        return Outcome::failed(QStringLiteral("the home folder %1 is not a folder").arg(_home.path()));
    if (!home.isReadable() || !home.isExecutable())
        return Outcome::failed(QStringLiteral("the home folder %1 cannot be read").arg(_home.path()));
    const QFileInfo support(_home.supportFolder());
    if (support.exists() && !(support.isDir() && support.isReadable() && support.isExecutable()))
        return Outcome::failed(QStringLiteral("the folder %1 cannot be read").arg(_home.supportFolder()));
    return Outcome::done();
}

Outcome Session::prepareHome() const
{
    Outcome home = checkHome();
    if (!home.ok())
        return home;
    const QString error = _home.makeFolders();
    return error.isEmpty() ? Outcome::done() : Outcome::failed(error);
}

QueryDatabaseEngine& Session::engine()
{
    if (!_engine)
        _engine = std::make_unique<QueryDatabaseEngine>(
            QueryDatabaseEngine::Parts{_home, _clock, _pauser, _files, _notifications, nullptr, {}},
            QueryDatabaseEngine::AtEnd::Discard);
    return *_engine;
}

Session::Loaded Session::load()
{
    Outcome home = checkHome();
    if (!home.ok())
        return {nullptr, home};
    if (!QFileInfo::exists(_home.databaseFile()))
        return {QueryCore::initWithQueryFolder(QString()), {}};
    if (!engine().lastError().isEmpty())
        return {nullptr, Outcome::failed(damagedText(engine()))};
    return {engine().rootQuery(), {}};
}

Outcome Session::edit(const Change& change)
{
    Outcome home = prepareHome();
    if (!home.ok())
        return home;
    if (!engine().lastError().isEmpty())
        return Outcome::failed(damagedText(engine()));

    Outcome outcome;
    const QString reason = engine().edit([&](QueryDatabaseEngine& database) -> QString {
        if (!database.lastError().isEmpty())
            outcome = Outcome::failed(damagedText(database));
        else
            outcome = change(database.rootQuery());
        return outcome.ok() ? QString() : outcome.text;
    });
    return outcome.ok() && !reason.isEmpty() ? Outcome::failed(reason) : outcome;
}

} // namespace quarry
