#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <optional>

namespace quarry {

// Ed25519 over the bytes themselves (RFC 8032), keys and signatures in their raw form.

struct SigningKey {
    QByteArray seed;      ///< 32 bytes; the maker's secret.
    QByteArray publicKey; ///< 32 bytes.
};

[[nodiscard]] bool isSignatureValid(const QByteArray& publicKey, const QByteArray& signature, QByteArrayView bytes);

/// 64 bytes; none when the seed is no key.
[[nodiscard]] std::optional<QByteArray> signatureOf(QByteArrayView bytes, const QByteArray& seed);

/// A new key, from the system's source of random bytes; none when that fails.
[[nodiscard]] std::optional<SigningKey> makeSigningKey();

/// None when the seed is not 32 bytes long.
[[nodiscard]] std::optional<QByteArray> publicKeyOf(const QByteArray& seed);

} // namespace quarry
