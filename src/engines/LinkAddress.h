#pragma once

#include "model/ResultRecord.h"

#include <QByteArray>
#include <QLatin1String>

#include <cstddef>
#include <span>
#include <string_view>

namespace quarry {

/// The address of a link, split once and without a copy of its text.
///
/// Two links are the same when their addresses are equal, or when they have the same host and the same path, an empty
/// path and "/" being one; query strings and fragments make no difference. Hosts compare exactly, paths as they are
/// written, escapes included; links without a host are the same only when their whole addresses are equal.
class LinkAddress final {
public:
    /// Looks into the record's text: use it only while a copy of the record is there, or a record that was made from
    /// one and has its address still.
    explicit LinkAddress(const ResultRecord& record);
    /// Stands alone.
    explicit LinkAddress(const Url& url);

    /// Whether the record has an address at all.
    [[nodiscard]] bool exists() const { return _exists; }
    /// Differs between two runs of the program, so that nobody can choose addresses that all have the same.
    [[nodiscard]] std::size_t hash() const { return _hash; }
    /// Whether it is the same link.
    [[nodiscard]] friend bool operator==(const LinkAddress& a, const LinkAddress& b)
    {
        return a._hash == b._hash && a._host == b._host && a._path == b._path;
    }

    /// Empty when there is none.
    [[nodiscard]] QString host() const;
    /// Whether the file's extension (Url::pathExtension) is one of these, ignoring case.
    [[nodiscard]] bool hasExtensionAmong(std::span<const QLatin1String> types) const;

private:
    friend class KnownLinks;
    void takeAscii(std::string_view text);
    void take(const Url& url);
    void finish();

    // The bytes of an ASCII text; any other one is marked by a first byte that no ASCII text has.
    std::string_view _host;
    std::string_view _path; ///< Without a host the whole address.
    QByteArray _own;        ///< Holds what these view where it is not the record's text.
    std::string_view _name; ///< The path, for the extension; not of use where `_url` is.
    Url _url;               ///< Of an address that is not all ASCII.
    std::size_t _hash = 0;
    bool _exists = false;
};

} // namespace quarry
