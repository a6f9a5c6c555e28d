#pragma once

#include "archive/StringTable.h"
#include "session/QueryDefinition.h"
#include "window/MemberList.h"

#include <QDialog>

class QComboBox;
class QFormLayout;
class QLabel;
class QLineEdit;

namespace quarry {

class ExpressionEdit;

/// The form for a query, a new one or one that is changed. It changes nothing: who opened it reads the
/// definition when it is accepted, and it is only accepted when it makes sense.
class QuerySheet final : public QDialog {
    Q_OBJECT

public:
    enum class Form {
        Plain,    ///< Just the words.
        Advanced, ///< With restrictions.
        Combined,
    };
    /// What the form helps with.
    struct Known {
        QStringList addresses; ///< To try an expression on.
        QList<MemberList::Known> queries;
    };

    /// `texts` must outlive the sheet.
    QuerySheet(Form form, const Known& known, const StringTable& texts, QWidget* parent = nullptr);

    /// Fills the form. `isNew` decides what it is called.
    void setDefinition(const QueryDefinition& definition, bool isNew);
    [[nodiscard]] QueryDefinition definition() const;

public Q_SLOTS:
    void accept() override;

private:
    void makeWords(QFormLayout& layout);
    void makeRestrictions(QFormLayout& layout, const QStringList& addresses);
    void makeName(QFormLayout& layout);
    /// Why it cannot be accepted, in a word for the user that may be empty; none when it can.
    [[nodiscard]] std::optional<QString> objection() const;
    void judge();

    const Form _form;
    const StringTable& _texts;
    bool _isNew = true;
    QLineEdit* _line = nullptr; ///< The words.
    MemberList* _members = nullptr;
    QComboBox* _words = nullptr;
    QLineEdit* _site = nullptr;
    ExpressionEdit* _expression = nullptr;
    QLineEdit* _name = nullptr;
    QLabel* _objection = nullptr;
    QPushButton* _ok = nullptr;
};

} // namespace quarry
