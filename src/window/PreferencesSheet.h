#pragma once

#include "archive/StringTable.h"
#include "platform/Clock.h"
#include "platform/Worker.h"
#include "session/ProductSettings.h"

#include <QDialog>

#include <functional>

class QCheckBox;
class QFormLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QSpinBox;

namespace quarry {

/// The product's preferences. Read when it opens; what was changed is written when it is accepted, on a thread of its
/// own, and the sheet closes when that is done. What could not be written is said, and the sheet stays.
class PreferencesSheet final : public QDialog {
    Q_OBJECT

public:
    struct Parts {
        HomeFolder home;
        Clock& clock;
        FileStore& files;
        const StringTable& texts;
        /// Tells the agent, which reads the schedule at its start only; may be empty.
        std::function<void(bool automatic, qint64 minutes)> followSchedule;
    };

    /// References must outlive the sheet.
    explicit PreferencesSheet(Parts parts, QWidget* parent = nullptr);

public Q_SLOTS:
    void accept() override;
    void reject() override;

private:
    struct ServiceRow {
        SearchService service;
        QCheckBox* isAsked = nullptr;
        QLineEdit* address = nullptr;
    };

    void makeSchedule(QFormLayout& layout);
    void makeLimits(QFormLayout& layout);
    void makeServices(QFormLayout& layout);
    void show(const ProductSettings& settings);
    [[nodiscard]] ProductSettings entered() const;
    /// Says which address is none, and lets nobody accept it.
    void judge();
    void saved(const ProductSettings& settings, const QString& error);

    Parts _parts;
    ProductSettings _before;
    bool _isSaving = false;
    QCheckBox* _automatic = nullptr;
    QSpinBox* _minutes = nullptr;
    QCheckBox* _checkForUpdates = nullptr;
    QSpinBox* _resultsPerService = nullptr;
    QSpinBox* _newLinks = nullptr;
    QList<ServiceRow> _services;
    QLabel* _fault = nullptr;
    QPushButton* _ok = nullptr;
    Worker _worker; ///< Last: it ends before what its jobs call goes away.
};

} // namespace quarry
