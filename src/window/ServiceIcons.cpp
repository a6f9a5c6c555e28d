#include "window/ServiceIcons.h"

#include <QPainter>
#include <QPixmap>

#include <array>

namespace quarry {

namespace {

constexpr int Side = 32; // Drawn once, shown at half that and less.
/// Far enough from one another, and from light and dark backgrounds.
constexpr std::array Colours = {0x3B78C3, 0x7B4FA6, 0x1E8E8E, 0xB8662B, 0x5A8F3A};

QIcon draw(QChar letter, const QColor& colour)
{
    QPixmap picture(Side, Side);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.drawRoundedRect(picture.rect(), Side / 5.0, Side / 5.0);
    QFont font = painter.font();
    font.setPixelSize(Side * 3 / 4);
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(picture.rect(), Qt::AlignCenter, letter);
    painter.end();
    QIcon icon(picture);
    icon.addPixmap(picture, QIcon::Selected); // A tinted letter on a tinted ground cannot be read.
    return icon;
}

std::array<QIcon, AllSearchServices.size()> drawAll()
{
    static_assert(Colours.size() == AllSearchServices.size());
    std::array<QIcon, AllSearchServices.size()> icons;
    for (const SearchService service : AllSearchServices)
        icons.at(indexOf(service)) = draw(searchServiceName(service).at(0), QColor(QRgb(Colours.at(indexOf(service)))));
    return icons;
}

} // namespace

QIcon serviceIcon(SearchService service)
{
    static const std::array icons = drawAll();
    return icons.at(indexOf(service));
}

QIcon serviceIcon(const QString& engineId)
{
    for (const SearchService service : AllSearchServices) {
        if (!engineId.isEmpty() && searchServiceIdentifier(service) == engineId)
            return serviceIcon(service);
    }
    return {};
}

} // namespace quarry
