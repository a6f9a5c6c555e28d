#include "updater/ImageSignature.h"

#include <openssl/evp.h>
#include <openssl/rand.h>

#include <memory>

namespace quarry {

namespace {

constexpr qsizetype keySize = 32;
constexpr qsizetype signatureSize = 64;

struct FreeKey {
    void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
};
struct FreeContext {
    void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
};
using Key = std::unique_ptr<EVP_PKEY, FreeKey>;
using Context = std::unique_ptr<EVP_MD_CTX, FreeContext>;

const unsigned char* raw(const char* bytes)
{
    return reinterpret_cast<const unsigned char*>(bytes);
}

Key secretKey(const QByteArray& seed)
{
    if (seed.size() != keySize)
        return nullptr;
    return Key(EVP_PKEY_new_raw_private_key(EVP_PKEY_ED25519, nullptr, raw(seed.constData()), keySize));
}

} // namespace

bool isSignatureValid(const QByteArray& publicKey, const QByteArray& signature, QByteArrayView bytes)
{
    if (publicKey.size() != keySize || signature.size() != signatureSize)
        return false;
    const Key key(EVP_PKEY_new_raw_public_key(EVP_PKEY_ED25519, nullptr, raw(publicKey.constData()), keySize));
    const Context context(EVP_MD_CTX_new());
    return key && context && EVP_DigestVerifyInit(context.get(), nullptr, nullptr, nullptr, key.get()) == 1 &&
           EVP_DigestVerify(context.get(), raw(signature.constData()), signatureSize, raw(bytes.data()),
                            static_cast<std::size_t>(bytes.size())) == 1;
}

std::optional<QByteArray> signatureOf(QByteArrayView bytes, const QByteArray& seed)
{
    const Key key = secretKey(seed);
    const Context context(EVP_MD_CTX_new());
    QByteArray signature(signatureSize, '\0');
    std::size_t size = signatureSize;
    if (!key || !context || EVP_DigestSignInit(context.get(), nullptr, nullptr, nullptr, key.get()) != 1 ||
        EVP_DigestSign(context.get(), reinterpret_cast<unsigned char*>(signature.data()), &size, raw(bytes.data()),
                       static_cast<std::size_t>(bytes.size())) != 1)
        return std::nullopt;
    return signature;
}

std::optional<QByteArray> publicKeyOf(const QByteArray& seed)
{
    const Key key = secretKey(seed);
    QByteArray publicKey(keySize, '\0');
    std::size_t size = keySize;
    if (!key || EVP_PKEY_get_raw_public_key(key.get(), reinterpret_cast<unsigned char*>(publicKey.data()), &size) != 1)
        return std::nullopt;
    return publicKey;
}

std::optional<SigningKey> makeSigningKey()
{
    SigningKey key{QByteArray(keySize, '\0'), {}};
    if (RAND_priv_bytes(reinterpret_cast<unsigned char*>(key.seed.data()), keySize) != 1)
        return std::nullopt;
    const std::optional<QByteArray> publicKey = publicKeyOf(key.seed);
    if (!publicKey)
        return std::nullopt;
    key.publicKey = *publicKey;
    return key;
}

} // namespace quarry
