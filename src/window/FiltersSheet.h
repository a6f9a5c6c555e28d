#pragma once

#include "archive/StringTable.h"
#include "session/QuerySettings.h"

#include <QDialog>

class QCheckBox;
class QLineEdit;

namespace quarry {

class FilterList;

/// What a query leaves out, highlights and keeps. It changes nothing: who opened it reads the settings when it is
/// accepted.
class FiltersSheet final : public QDialog {
    Q_OBJECT

public:
    struct Query {
        QString title;
        QString words; ///< Highlighted when no others are.
        QStringList addresses;
    };

    /// `texts` must outlive the sheet.
    FiltersSheet(const Query& query, const StringTable& texts, QWidget* parent = nullptr);

    void setSettings(const QuerySettings& settings);
    [[nodiscard]] QuerySettings settings() const;

private:
    FilterList* _filters = nullptr;
    QCheckBox* _blacklist = nullptr;
    QCheckBox* _digests = nullptr;
    QCheckBox* _highlights = nullptr;
    QLineEdit* _words = nullptr;
};

} // namespace quarry
