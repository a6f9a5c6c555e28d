#pragma once

#include "platform/PageLoader.h"

#include <functional>
#include <mutex>
#include <vector>

namespace quarry::test {

/// Answers page requests from a function and notes the addresses asked for. Thread-safe.
class FakePageLoader final : public PageLoader {
public:
    using Answer = std::function<LoadedPage(const QByteArray& address)>;
    explicit FakePageLoader(Answer answer) : _answer(std::move(answer)) {}

    [[nodiscard]] LoadedPage load(const QByteArray& address) override
    {
        {
            const std::lock_guard lock(_mutex);
            _requests.push_back(address);
        }
        return _answer(address);
    }
    [[nodiscard]] std::vector<QByteArray> requests() const
    {
        const std::lock_guard lock(_mutex);
        return _requests;
    }

    /// A page that arrived well.
    static LoadedPage page(const QByteArray& bytes, const QString& contentType = QStringLiteral("text/html"))
    {
        LoadedPage loaded;
        loaded.bytes = bytes;
        loaded.contentType = contentType;
        loaded.httpStatus = 200;
        return loaded;
    }
    /// A request that failed.
    static LoadedPage failure(const QString& error, int status = 0)
    {
        LoadedPage loaded;
        loaded.error = error;
        loaded.httpStatus = status;
        return loaded;
    }

private:
    Answer _answer;
    mutable std::mutex _mutex;
    std::vector<QByteArray> _requests;
};

} // namespace quarry::test
