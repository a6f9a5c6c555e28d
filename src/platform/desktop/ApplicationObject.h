#pragma once

#include "platform/desktop/SingleInstance.h"

#include <QObject>
#include <QStringList>
#include <QVariantMap>

namespace quarry {

/// What SingleInstance shows on the bus. The names are the interface's.
class ApplicationObject final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")
public:
    explicit ApplicationObject(SingleInstance& owner) : QObject(&owner), _owner(owner) {}

    /// The data by which a started program hands on the permission to take the focus.
    [[nodiscard]] static QVariantMap platformData(const QString& activationToken);

public Q_SLOTS:
    void Activate(const QVariantMap& platformData);
    void Open(const QStringList& uris, const QVariantMap& platformData);
    void ActivateAction(const QString& action, const QVariantList& parameters, const QVariantMap& platformData);

private:
    SingleInstance& _owner;
};

} // namespace quarry
