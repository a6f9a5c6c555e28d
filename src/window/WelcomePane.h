#pragma once

#include "archive/StringTable.h"

#include <QScrollArea>

class QCheckBox;
class QLineEdit;
class QRadioButton;
class QSpinBox;
class QVBoxLayout;

namespace quarry {

/// What stands in an empty window: a first query to try, whether to refresh automatically, and where to search. It
/// changes nothing itself.
class WelcomePane final : public QScrollArea {
    Q_OBJECT

public:
    explicit WelcomePane(const StringTable& texts, QWidget* parent = nullptr);

    struct Settings {
        bool automatic = false;
        int minutes = 30;
        QString gateway; ///< An address; empty: the public services.
    };
    /// What holds now; changes nothing.
    void showSettings(const Settings& settings);
    void focusQuery();

Q_SIGNALS:
    void queryWanted(const QString& words);
    void scheduleWanted(bool automatic, int minutes);
    /// An empty address: the public services.
    void servicesWanted(const QString& address);

private:
    void addHead(QVBoxLayout& column);
    void addQuery(QVBoxLayout& column);
    void addSchedule(QVBoxLayout& column);
    void addServices(QVBoxLayout& column);
    void sayQuery();
    void saySchedule();
    void sayServices();
    [[nodiscard]] QString text(const char16_t* key) const;

    const StringTable& _texts;
    QLineEdit* _query = nullptr;
    QCheckBox* _automatic = nullptr;
    QSpinBox* _minutes = nullptr;
    QRadioButton* _public = nullptr;
    QRadioButton* _gateway = nullptr;
    QLineEdit* _address = nullptr;
    QString _said; ///< The address that was asked for last.
};

} // namespace quarry
