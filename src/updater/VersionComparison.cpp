#include "updater/VersionComparison.h"

#include "updater/IntegerValue.h"

#include <QString>

namespace quarry {

namespace {

qint64 number(QStringView version)
{
    QString digits = version.toString();
    digits.remove(u'.');
    return integerValue(digits);
}

/// The part behind the "b", a date stamp's letter apart.
struct Beta {
    qint64 stamp = 0;
    QChar letter; ///< Null when there is none.

    explicit Beta(QStringView text)
    {
        constexpr qsizetype stampLength = 6;
        if (text.size() > stampLength) {
            letter = text.back();
            text.chop(1);
        }
        stamp = integerValue(text);
    }
};

bool isNewerBeta(const Beta& remote, const Beta& local)
{
    if (remote.stamp != local.stamp)
        return remote.stamp > local.stamp;
    if (remote.letter.isNull() || local.letter.isNull())
        return remote.letter.isNull() != local.letter.isNull();
    return remote.letter != local.letter && remote.letter.toCaseFolded() >= local.letter.toCaseFolded();
}

} // namespace

bool isNewerVersion(QStringView remote, QStringView local)
{
    const qsizetype remoteB = remote.indexOf(u'b');
    const qsizetype localB = local.indexOf(u'b');
    const qint64 remoteNumber = number(remoteB < 0 ? remote : remote.first(remoteB));
    const qint64 localNumber = number(localB < 0 ? local : local.first(localB));
    if (remoteB < 0)
        return localB < 0 ? remoteNumber > localNumber : remoteNumber >= localNumber;
    if (localB < 0 || remoteNumber > localNumber)
        return remoteNumber > localNumber;
    // The remote's place of the "b" counts for both, which is the same place in versions of one length. A smaller
    // remote number goes on to the betas, too.
    const QStringView localBeta = local.size() > remoteB ? local.sliced(remoteB + 1) : QStringView();
    return isNewerBeta(Beta(remote.sliced(remoteB + 1)), Beta(localBeta));
}

} // namespace quarry
