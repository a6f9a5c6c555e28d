#pragma once

#include "gateway/FolderSource.h"
#include "gateway/GatewayServer.h"
#include "gateway/ServiceDialect.h"
#include "support/TemporaryHome.h"

#include <QDir>

#include <gtest/gtest.h>
#include <httplib.h>

#include <memory>

namespace quarry {

/// A real server on loopback over a folder of its own.
class RunningGateway {
public:
    struct Page {
        int status = 0;
        QByteArray body;
        httplib::Headers headers;
        [[nodiscard]] QByteArray header(const char* name) const
        {
            const auto found = headers.find(name);
            return found == headers.end() ? QByteArray() : QByteArray::fromStdString(found->second);
        }
    };

    explicit RunningGateway(QString indexFile = {}) : _indexFile(std::move(indexFile))
    {
        QDir(_home.path()).mkdir(QStringLiteral("docs"));
    }

    [[nodiscard]] QString path(const QString& name) const { return _home.filePath(QStringLiteral("docs/") + name); }
    [[nodiscard]] QString outside(const QString& name) const { return _home.filePath(name); }

    void write(const QString& name, const QByteArray& bytes) const
    {
        QDir().mkpath(QFileInfo(path(name)).path());
        ASSERT_TRUE(test::writeFile(path(name), bytes));
    }

    void start()
    {
        QString error;
        _server.reset();
        _source = FolderSource::open({path({}), _indexFile, _progress}, &error);
        ASSERT_TRUE(_source) << qPrintable(error);
        _server = std::make_unique<GatewayServer>(*_source, GatewayServer::Options());
        ASSERT_TRUE(_server->start(&error)) << qPrintable(error);
    }
    void stop()
    {
        _server.reset();
        _source.reset();
    }
    void setProgress(FolderReader::Progress progress) { _progress = std::move(progress); }

    [[nodiscard]] QByteArray base() const { return _server->base(); }
    [[nodiscard]] int port() const { return _server->port(); }

    /// The target goes onto the wire exactly as it stands.
    [[nodiscard]] Page get(const QByteArray& target, const httplib::Headers& headers = {}) const
    {
        httplib::Client client("127.0.0.1", _server->port());
        client.set_url_encode(false);
        const auto result = client.Get(target.toStdString(), headers);
        if (!result)
            return {};
        return {result->status, QByteArray::fromStdString(result->body), result->headers};
    }

    /// The documents a search finds on its first page, their paths below "/doc/", in order.
    [[nodiscard]] QStringList find(const QByteArray& parameters) const
    {
        const QByteArray body = get("/do/metasearch.pl?" + parameters).body;
        const QByteArray mark = "href='" + base() + "/doc/";
        QStringList found;
        for (qsizetype at = body.indexOf(mark); at >= 0; at = body.indexOf(mark, at + 1)) {
            const qsizetype begin = at + mark.size();
            found += QString::fromUtf8(body.mid(begin, body.indexOf('\'', begin) - begin));
        }
        return found;
    }

    /// The same sorted, with blanks between.
    [[nodiscard]] QString found(const QByteArray& parameters) const
    {
        QStringList names = find(parameters);
        names.sort();
        return names.join(u' ');
    }

private:
    QTemporaryDir _home;
    QString _indexFile;
    FolderReader::Progress _progress;
    std::unique_ptr<FolderSource> _source;
    std::unique_ptr<GatewayServer> _server;
};

} // namespace quarry
