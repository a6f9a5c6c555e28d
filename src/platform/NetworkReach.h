#pragma once

#include <QByteArray>
#include <QString>

struct sockaddr;

namespace quarry {

/// Whether an IP address leads somewhere else than to hosts of the public network: to the machine itself, a private
/// network, the link, or to many hosts. IPv4 addresses that stand within IPv6 ones count as what they are. True for
/// what is no IP address. Text without brackets.
[[nodiscard]] bool isPrivateAddress(const QByteArray& ip);

/// Whether a host, by name or address, is on private addresses only. Asks the system's resolver, so it may take
/// seconds; false for a name that it does not know.
[[nodiscard]] bool isPrivateHost(const QString& host);

/// The address as text; empty when it is no IP address.
[[nodiscard]] QByteArray numericAddress(const sockaddr& address);

} // namespace quarry
