#pragma once

#include <QByteArray>

#include <cstddef>
#include <memory>
#include <vector>

namespace quarry {

/// The C library's POSIX extended regular expressions over UTF-8 bytes, in the C.UTF-8 locale whatever the process's.
/// Compiled once; used by one thread at a time.
class PosixRegex final {
public:
    enum Option : int { IgnoreCase = 1, NoSubexpressions = 2, NewlineSensitive = 4 };

    /// The bytes from begin to before end; both -1 for a group that took no part in a match.
    struct Range {
        qsizetype begin = 0;
        qsizetype end = 0;
    };

    /// None when the pattern does not compile; `error` then has the library's number for the reason.
    [[nodiscard]] static std::unique_ptr<PosixRegex> compile(const QByteArray& pattern, int options, int& error);
    ~PosixRegex();
    PosixRegex(const PosixRegex&) = delete;
    PosixRegex& operator=(const PosixRegex&) = delete;

    [[nodiscard]] std::size_t groupCount() const;
    /// Looks for the first match within that range of the bytes. `groups` gets the whole match and each group.
    [[nodiscard]] bool match(const QByteArray& bytes, Range within, std::vector<Range>& groups);

private:
    struct Compiled;
    [[nodiscard]] static std::unique_ptr<Compiled> compiled(const QByteArray& pattern, int options, int& error);
    explicit PosixRegex(std::unique_ptr<Compiled> compiled);
    std::unique_ptr<Compiled> _compiled;
};

} // namespace quarry
