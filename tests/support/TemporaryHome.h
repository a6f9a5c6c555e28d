#pragma once

#include "platform/HomeFolder.h"

#include <QFile>
#include <QTemporaryDir>

namespace quarry::test {

/// A home folder of its own for one test, with the product's folders in it; gone afterwards.
class TemporaryHome final {
public:
    TemporaryHome() : _home(_folder.path()) { _problem = _home.makeFolders(); }
    operator const HomeFolder&() const { return _home; }
    const HomeFolder* operator->() const { return &_home; }
    [[nodiscard]] QString path() const { return _folder.path(); }
    [[nodiscard]] QString problem() const { return _problem; }

private:
    QTemporaryDir _folder;
    HomeFolder _home;
    QString _problem;
};

/// The bytes of a file; empty when there is none.
inline QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Writes a file in place, as a program that knows nothing of the product's rules would.
inline bool writeFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(bytes) == bytes.size();
}

} // namespace quarry::test
