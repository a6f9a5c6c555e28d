#pragma once

#include "engines/LinkAddress.h"

#include <QList>

#include <cstdint>
#include <string_view>
#include <vector>

namespace quarry {

/// The links of some records, to be asked whether a link is among them; LinkAddress says when two are the same.
///
/// Every question is one look-up, however many links there are.
class KnownLinks final {
public:
    KnownLinks() = default;
    /// Records without an address are left out.
    explicit KnownLinks(const ResultList& records);

    [[nodiscard]] bool contains(const LinkAddress& link) const
    {
        return !_slots.empty() && _slots[slotOf(link)].isUsed();
    }
    [[nodiscard]] bool contains(const Url& address) const { return contains(LinkAddress(address)); }
    /// The link's record must be there as long as these.
    void add(const LinkAddress& link);

private:
    /// A place in the table. Most questions end here, without a look at the texts.
    struct Slot {
        std::uint32_t tag = 0;    ///< Part of the hash.
        std::uint32_t number = 0; ///< Of the link, from 1.
        [[nodiscard]] bool isUsed() const { return number != 0; }
    };
    struct Texts {
        std::string_view host, path;
    };

    [[nodiscard]] std::size_t slotOf(const LinkAddress& link) const;
    void makeRoom(std::size_t count);

    std::vector<Slot> _slots; ///< A power of two, at most half of them used.
    std::vector<Texts> _texts;
    std::vector<std::size_t> _hashes;
    QList<QByteArray> _own;
    ResultList _records;
};

} // namespace quarry
