#include "platform/PosixRegex.h"

#include <locale.h>
#include <regex.h>

#include <chrono>
#include <utility>

namespace quarry {

namespace {

/// A match that takes longer has filled the library's tables (see PosixRegex::match). Compiling takes less.
constexpr std::chrono::microseconds SlowMatch(500);

/// The calling thread's locale while it lives: C.UTF-8, so that answers are the same in every process.
class Utf8Locale final {
public:
    Utf8Locale() : _previous(uselocale(shared())) {}
    ~Utf8Locale() { uselocale(_previous); }
    Utf8Locale(const Utf8Locale&) = delete;
    Utf8Locale& operator=(const Utf8Locale&) = delete;

private:
    static locale_t shared()
    {
        static const locale_t locale = newlocale(LC_ALL_MASK, "C.UTF-8", nullptr);
        return locale;
    }
    locale_t _previous;
};

int libraryOptions(int options)
{
    return REG_EXTENDED | ((options & PosixRegex::IgnoreCase) != 0 ? REG_ICASE : 0) |
           ((options & PosixRegex::NoSubexpressions) != 0 ? REG_NOSUB : 0) |
           ((options & PosixRegex::NewlineSensitive) != 0 ? REG_NEWLINE : 0);
}

} // namespace

struct PosixRegex::Compiled {
    QByteArray pattern;
    int options = 0;
    regex_t preg = {};
    std::vector<regmatch_t> matches;
    bool isCompiled = false;
    bool wasSlow = false;

    Compiled() = default;
    ~Compiled()
    {
        if (isCompiled)
            regfree(&preg);
    }
    Compiled(const Compiled&) = delete;
    Compiled& operator=(const Compiled&) = delete;
};

PosixRegex::PosixRegex(std::unique_ptr<Compiled> compiled) : _compiled(std::move(compiled)) {}
PosixRegex::~PosixRegex() = default;

std::unique_ptr<PosixRegex::Compiled> PosixRegex::compiled(const QByteArray& pattern, int options, int& error)
{
    auto compiled = std::make_unique<Compiled>();
    const Utf8Locale locale;
    error = regcomp(&compiled->preg, pattern.constData(), libraryOptions(options));
    if (error != 0)
        return nullptr;
    compiled->isCompiled = true;
    compiled->pattern = pattern;
    compiled->options = options;
    compiled->matches.resize(compiled->preg.re_nsub + 1);
    return compiled;
}

std::unique_ptr<PosixRegex> PosixRegex::compile(const QByteArray& pattern, int options, int& error)
{
    auto regex = compiled(pattern, options, error);
    if (!regex)
        return nullptr;
    return std::unique_ptr<PosixRegex>(new PosixRegex(std::move(regex))); // NOLINT: the constructor is private
}

std::size_t PosixRegex::groupCount() const
{
    return _compiled->preg.re_nsub;
}

bool PosixRegex::match(const QByteArray& bytes, Range within, std::vector<Range>& groups)
{
    // The library keeps every state that a pattern has ever been in. Some patterns make new ones at each character,
    // and looking one up takes the longer the more there are: so such a pattern begins anew.
    int error = 0;
    if (_compiled->wasSlow) {
        if (auto fresh = compiled(_compiled->pattern, _compiled->options, error))
            _compiled = std::move(fresh);
    }
    std::vector<regmatch_t>& matches = _compiled->matches;
    matches[0].rm_so = static_cast<regoff_t>(within.begin);
    matches[0].rm_eo = static_cast<regoff_t>(within.end);
    const auto begin = std::chrono::steady_clock::now();
    {
        const Utf8Locale locale;
        error = regexec(&_compiled->preg, bytes.constData(), matches.size(), matches.data(), REG_STARTEND);
    }
    _compiled->wasSlow = std::chrono::steady_clock::now() - begin > SlowMatch;
    if (error != 0)
        return false;
    groups.clear();
    for (const regmatch_t& match : matches)
        groups.push_back({match.rm_so, match.rm_eo});
    return true;
}

} // namespace quarry
