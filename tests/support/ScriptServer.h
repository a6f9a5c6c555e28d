#pragma once

#include "support/LoopbackServer.h"
#include "text/Data.h"
#include "updater/RequestCoding.h"

#include <QMap>
#include <QStringList>

namespace quarry::test {

/// The maker's server: the update script under "/update", and files beside it. What it answers is set before the first
/// request; a file with an answer of its own may break every rule.
class ScriptServer final {
public:
    using Answer = std::function<void(const LoopbackServer::Send& send, LoopbackServer& server)>;

    QByteArray reply;                   ///< The four fields.
    bool compresses = true;             ///< Else the script answers in plain text, which programs ask for again.
    QMap<QByteArray, QByteArray> files; ///< By path, "/" first.
    QMap<QByteArray, Answer> answers;   ///< Asked first.

    ScriptServer() : _server([this](const QByteArray& head, const LoopbackServer::Send& send) { serve(head, send); }) {}

    [[nodiscard]] QByteArray address(const QByteArray& path = "/update") const { return _server.address(path); }
    /// What the script was told, decoded, one line a request.
    [[nodiscard]] QStringList payloads() const
    {
        QStringList texts;
        for (const QByteArray& head : _server.requests()) {
            const QByteArray target = head.split(' ').value(1);
            if (target.startsWith("/update?"))
                texts.append(RequestCoding::hexaToAscii(QString::fromLatin1(target.mid(target.indexOf('?') + 1))));
        }
        return texts;
    }

private:
    void serve(const QByteArray& head, const LoopbackServer::Send& send)
    {
        const QByteArray target = head.split(' ').value(1);
        const QByteArray path = target.split('?').value(0);
        if (const auto answer = answers.constFind(path); answer != answers.constEnd())
            (*answer)(send, _server);
        else if (path == "/update")
            send(LoopbackServer::reply(isCompressed(target) ? compressedData(reply).value_or(QByteArray()) : reply));
        else if (const auto file = files.constFind(path); file != files.constEnd())
            send(LoopbackServer::reply(*file, "200 OK", "Content-Type: application/octet-stream\r\n"));
        else
            send(LoopbackServer::reply("no such file", "404 Not Found"));
    }
    [[nodiscard]] bool isCompressed(const QByteArray& target) const
    {
        return compresses && !target.endsWith("2626636c656172");
    }

    LoopbackServer _server;
};

} // namespace quarry::test
