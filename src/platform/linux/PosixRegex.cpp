#include "platform/PosixRegex.h"

#include <locale.h>
#include <regex.h>

namespace quarry {

namespace {

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
    regex_t preg = {};
    std::vector<regmatch_t> matches;
    bool isCompiled = false;

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

std::unique_ptr<PosixRegex> PosixRegex::compile(const QByteArray& pattern, int options, int& error)
{
    auto compiled = std::make_unique<Compiled>();
    const Utf8Locale locale;
    error = regcomp(&compiled->preg, pattern.constData(), libraryOptions(options));
    if (error != 0)
        return nullptr;
    compiled->isCompiled = true;
    compiled->matches.resize(compiled->preg.re_nsub + 1);
    return std::unique_ptr<PosixRegex>(new PosixRegex(std::move(compiled))); // NOLINT: the constructor is private
}

std::size_t PosixRegex::groupCount() const
{
    return _compiled->preg.re_nsub;
}

bool PosixRegex::match(const QByteArray& bytes, Range within, std::vector<Range>& groups) const
{
    std::vector<regmatch_t>& matches = _compiled->matches;
    matches[0].rm_so = static_cast<regoff_t>(within.begin);
    matches[0].rm_eo = static_cast<regoff_t>(within.end);
    const Utf8Locale locale;
    if (regexec(&_compiled->preg, bytes.constData(), matches.size(), matches.data(), REG_STARTEND) != 0)
        return false;
    groups.clear();
    for (const regmatch_t& match : matches)
        groups.push_back({match.rm_so, match.rm_eo});
    return true;
}

} // namespace quarry
