#pragma once

#include <QDBusConnection>
#include <QObject>

namespace quarry {

/// What the desktop hears from an item and its menu.
class TrayEar final : public QObject {
    Q_OBJECT

public:
    explicit TrayEar(const QString& item)
    {
        QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("ear"));
        const QString menu = QStringLiteral("com.canonical.dbusmenu");
        const QString icon = QStringLiteral("org.kde.StatusNotifierItem");
        bus.connect(item, QString(), menu, QStringLiteral("ItemsPropertiesUpdated"), this, SLOT(hearTitles()));
        bus.connect(item, QString(), menu, QStringLiteral("LayoutUpdated"), this, SLOT(hearLayout()));
        bus.connect(item, QString(), icon, QStringLiteral("NewIcon"), this, SLOT(hearIcon()));
    }
    ~TrayEar() override { QDBusConnection::disconnectFromBus(QStringLiteral("ear")); }

    int titles = 0;
    int layouts = 0;
    int icons = 0;

private Q_SLOTS:
    void hearTitles() { ++titles; }
    void hearLayout() { ++layouts; }
    void hearIcon() { ++icons; }
};

} // namespace quarry
