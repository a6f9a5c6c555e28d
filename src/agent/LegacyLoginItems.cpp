#include "agent/LegacyLoginItems.h"

#include "platform/SystemLog.h"

#include <algorithm>

namespace quarry {

namespace {

constexpr qsizetype LongestPath = 2048;

QString listKey()
{
    return QStringLiteral("AutoLaunchedApplicationDictionary");
}

QString pathKey()
{
    return QStringLiteral("Path");
}

/// The first entry whose path contains the text.
PlistValue::List::const_iterator found(const PlistValue::List& entries, const QString& text)
{
    return std::find_if(entries.cbegin(), entries.cend(), [&](const PlistValue& entry) {
        return entry[pathKey()].text().value_or(QString()).contains(text, Qt::CaseInsensitive);
    });
}

} // namespace

LegacyLoginItems::LegacyLoginItems(const HomeFolder& home, FileStore& files)
    : _file(home.path() + QStringLiteral("/Library/Preferences/loginwindow.plist"), home.writerLockFile(), files)
{
}

bool LegacyLoginItems::contains(const QString& text) const
{
    const PlistValue::List entries = _file.read().entries.value(listKey()).list().value_or(PlistValue::List());
    return found(entries, text) != entries.cend();
}

void LegacyLoginItems::removeFirst(const QString& text) const
{
    if (!contains(text))
        return;
    change([&text](PlistValue::List& entries) {
        if (const auto entry = found(entries, text); entry != entries.cend())
            entries.erase(entry);
    });
}

void LegacyLoginItems::append(const QString& bundlePath) const
{
    change([&bundlePath](PlistValue::List& entries) {
        entries.append(PlistValue(PlistValue::Dictionary{{QStringLiteral("AliasData"), aliasDataOfPath(bundlePath)},
                                                         {QStringLiteral("Hide"), false},
                                                         {pathKey(), bundlePath}}));
    });
}

void LegacyLoginItems::change(const std::function<void(PlistValue::List&)>& apply) const
{
    const QString error = _file.change([&apply](PlistValue::Dictionary& values) {
        PlistValue::List entries = values.value(listKey()).list().value_or(PlistValue::List());
        apply(entries);
        values.insert(listKey(), entries);
    });
    if (!error.isEmpty())
        debugLog(error);
}

QByteArray aliasDataOfPath(const QString& path)
{
    return path.toUtf8();
}

QString pathOfAliasData(const QByteArray& alias)
{
    return alias.isEmpty() ? QString() : QString::fromUtf8(alias.left(LongestPath));
}

} // namespace quarry
