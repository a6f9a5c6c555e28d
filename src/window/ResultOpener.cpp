#include "window/ResultOpener.h"

#include "text/LocalisedFormat.h"
#include "text/Url.h"
#include "window/ResultModel.h"

#include <QLocale>
#include <QMessageBox>

#include <algorithm>
#include <array>

namespace quarry {

namespace {

/// So many windows of a browser nobody opens by mistake and regrets it.
constexpr qsizetype FewResults = 10;

bool isWebAddress(const QString& address)
{
    constexpr std::array Schemes = {"http", "https", "ftp"};
    const Url url = Url::fromStored(address);
    return std::any_of(Schemes.begin(), Schemes.end(), [&url](const char* scheme) {
        return url.scheme().compare(QLatin1String(scheme), Qt::CaseInsensitive) == 0;
    });
}

} // namespace

bool ResultOpener::isWanted(qsizetype count, QWidget* window) const
{
    return count <= FewResults || QMessageBox::question(window, _texts.text(QStringLiteral("203_Open result")),
                                                        filledFormat(_texts.text(QStringLiteral("204_Open many")),
                                                                     {QLocale().toString(count)})) == QMessageBox::Yes;
}

QModelIndexList ResultOpener::open(const QModelIndexList& rows)
{
    QModelIndexList opened;
    QStringList refused;
    bool isTaken = true;
    for (const QModelIndex& row : rows) {
        const QString address = row.data(ResultModel::AddressRole).toString();
        if (!isWebAddress(address)) {
            refused.append(address);
            continue;
        }
        isTaken = _workspace.openAddress(address);
        if (!isTaken)
            break; // Nor would it take the others.
        opened.append(row);
    }
    QStringList faults;
    if (!isTaken)
        faults.append(_texts.text(QStringLiteral("204_Not taken")));
    if (refused.size() == 1)
        faults.append(filledFormat(_texts.text(QStringLiteral("204_Refused")), {refused.constFirst()}));
    else if (!refused.isEmpty())
        faults.append(
            filledFormat(_texts.text(QStringLiteral("204_Several refused")), {QLocale().toString(refused.size())}));
    _fault = faults.join(u'\n');
    return opened;
}

} // namespace quarry
