#include "platform/NetworkReach.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>

namespace quarry {

namespace {

using Ipv6 = std::array<std::uint8_t, 16>;

/// A range of addresses: the leading bits that they share.
struct Range {
    Ipv6 prefix;
    int bits;
};

/// IPv4 addresses are kept the way IPv6 maps them.
constexpr Range mapped(std::uint8_t a, std::uint8_t b, std::uint8_t c, int bits)
{
    return {{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF, a, b, c, 0}, 96 + bits};
}

constexpr Range privateRanges[] = {
    mapped(0, 0, 0, 8),                   // this network
    mapped(10, 0, 0, 8),                  // private
    mapped(100, 64, 0, 10),               // shared by a provider's customers
    mapped(127, 0, 0, 8),                 // loopback
    mapped(169, 254, 0, 16),              // the link
    mapped(172, 16, 0, 12),               // private
    mapped(192, 0, 0, 24),                // protocols' own
    mapped(192, 168, 0, 16),              // private
    mapped(198, 18, 0, 15),               // measurements within a network
    mapped(224, 0, 0, 3),                 // many hosts, reserved, broadcast
    {{0xFC}, 7},                          // private
    {{0xFE, 0x80}, 10},                   // the link
    {{0xFE, 0xC0}, 10},                   // the site
    {{0xFF}, 8},                          // many hosts
    {{0x00, 0x64, 0xFF, 0x9B, 0, 1}, 48}, // a network's own translation to IPv4
};

/// Ranges whose addresses carry an IPv4 address, and where it begins. The first holds the unspecified address and
/// loopback, too, as 0.0.0.0 and 0.0.0.1.
constexpr struct {
    Range range;
    std::size_t at;
} carriers[] = {
    {{{0}, 96}, 12},
    {{{0x00, 0x64, 0xFF, 0x9B}, 96}, 12},
    {{{0x20, 0x02}, 16}, 2},
};

bool holds(const Range& range, const Ipv6& address)
{
    for (int bit = 0; bit < range.bits; ++bit) {
        const auto byte = static_cast<std::size_t>(bit / 8);
        if (((address[byte] ^ range.prefix[byte]) >> (7 - bit % 8) & 1) != 0)
            return false;
    }
    return true;
}

Ipv6 mappedFrom(const std::uint8_t* ipv4)
{
    Ipv6 address = mapped(0, 0, 0, 0).prefix;
    std::copy_n(ipv4, 4, address.begin() + 12);
    return address;
}

std::optional<Ipv6> parsed(const QByteArray& ip)
{
    // The zone of a link's address ("%eth0") says nothing here.
    const QByteArray bare = ip.left(ip.indexOf('%') < 0 ? ip.size() : ip.indexOf('%'));
    Ipv6 address{};
    if (inet_pton(AF_INET6, bare.constData(), address.data()) == 1)
        return address;
    std::array<std::uint8_t, 4> ipv4{};
    if (inet_pton(AF_INET, bare.constData(), ipv4.data()) == 1)
        return mappedFrom(ipv4.data());
    return std::nullopt;
}

} // namespace

bool isPrivateAddress(const QByteArray& ip)
{
    std::optional<Ipv6> address = parsed(ip);
    if (!address)
        return true;
    for (const auto& carrier : carriers) {
        if (holds(carrier.range, *address)) {
            address = mappedFrom(address->data() + carrier.at);
            break;
        }
    }
    return std::any_of(std::begin(privateRanges), std::end(privateRanges),
                       [&](const Range& range) { return holds(range, *address); });
}

QByteArray numericAddress(const sockaddr& address)
{
    std::array<char, NI_MAXHOST> text{};
    const bool isIpv6 = address.sa_family == AF_INET6;
    if (!isIpv6 && address.sa_family != AF_INET)
        return {};
    const auto size = static_cast<socklen_t>(isIpv6 ? sizeof(sockaddr_in6) : sizeof(sockaddr_in));
    if (getnameinfo(&address, size, text.data(), text.size(), nullptr, 0, NI_NUMERICHOST) != 0)
        return {};
    return text.data();
}

bool isPrivateHost(const QString& host)
{
    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    QByteArray name = host.toUtf8();
    if (name.startsWith('[') && name.endsWith(']'))
        name = name.mid(1, name.size() - 2);
    if (getaddrinfo(name.constData(), nullptr, &hints, &found) != 0)
        return false;
    const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> addresses(found, &freeaddrinfo);
    for (const addrinfo* at = found; at != nullptr; at = at->ai_next) {
        if (!isPrivateAddress(numericAddress(*at->ai_addr)))
            return false;
    }
    return found != nullptr;
}

} // namespace quarry
