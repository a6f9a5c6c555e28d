#pragma once

#include "archive/KeyedArchive.h"

#include <cstdint>
#include <vector>

namespace quarry {

/// Looks through values that are carried unread, so that copying them later cannot fail: every reference leads
/// somewhere, and no container holds itself other than through an archived object. Each object of the archive is
/// looked at once, however many values share it.
class OpaqueCheck final {
public:
    explicit OpaqueCheck(const KeyedArchive& archive) : _archive(archive) {}
    /// Whether everything below the slot is sound.
    [[nodiscard]] bool isSound(std::uint32_t slot);

    /// How deep containers may stand in one another.
    static constexpr int MaximumDepth = 256;

private:
    enum class State : std::uint8_t { Unseen, Open, Done };
    [[nodiscard]] bool walk(std::uint32_t object, int depth);
    [[nodiscard]] bool follow(const PlistItem& uid);

    const KeyedArchive& _archive;
    std::vector<State> _states;
    std::vector<std::uint32_t> _waiting; ///< Archived objects still to be looked at.
};

} // namespace quarry
