#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>

namespace quarry {

/// What one page request brought. `error` is empty on success: a reply with a status below 400 that arrived
/// whole and within the limits.
struct LoadedPage {
    QByteArray bytes;
    QString contentType;  ///< The Content-Type header as sent, with its charset, or empty.
    QString finalAddress; ///< The address after redirects.
    int httpStatus = 0;   ///< 0 when no reply came.
    double seconds = 0.0; ///< From the request to the last byte.
    /// Of a reply with a status of 400 or above: its beginning, where the loader keeps that; else empty.
    QByteArray errorBody;
    QString error; ///< One line for a person: "connection refused", "HTTP status 503", ...

    [[nodiscard]] bool ok() const { return error.isEmpty(); }
};

/// Loads web pages. HTTP and HTTPS only, redirects limited, 60 s without data ends it, 16 MiB at most, TLS
/// verified. Never uses a cache. Blocks the calling thread; may be called from several threads at once.
class PageLoader {
public:
    virtual ~PageLoader() = default;
    [[nodiscard]] virtual LoadedPage load(const QByteArray& address) = 0;
};

} // namespace quarry
