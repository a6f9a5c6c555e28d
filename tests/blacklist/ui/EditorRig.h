#pragma once

#include "blacklist/ui/BlacklistEditorWinController.h"
#include "platform/QtEventTimers.h"
#include "support/FailingFileStore.h"
#include "support/QtPrinting.h"
#include "support/Screen.h"
#include "support/TemporaryHome.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTableView>
#include <QTest>

#include <gtest/gtest.h>

namespace quarry::test {

/// Notes the addresses that are opened.
class NotingWorkspace final : public Workspace {
public:
    bool openBundle(const QString&) override { return false; }
    bool openFile(const QString&, const QString&) override { return false; }
    bool openAddress(const QString& address) override
    {
        opened.append(address);
        return true;
    }
    bool launch(const QString&, const QStringList&) override { return false; }
    bool moveToTrash(const QString&) override { return false; }
    QStringList opened;
};

inline BlacklistRule textRule(const char* text, qint64 type = BlacklistType::Text, bool state = true)
{
    return {QString::fromUtf8(text), type, state, false};
}

/// The editor over a home folder of its own, used as a person does: by mouse and keys, looking at what is shown.
class EditorRig : public testing::Test {
protected:
    static StringTable textsIn(const QString& language)
    {
        return StringTable(QStringLiteral(QUARRY_BUNDLE_DIR "/Resources"), {language});
    }

    void open()
    {
        editor.showWindow();
        ASSERT_TRUE(happens([&] { return editor.isActiveWindow() && isIdle(); }));
    }
    /// The list is neither read nor saved.
    bool isIdle() { return editor.cursor().shape() != Qt::BusyCursor; }
    template <typename Part>
    Part& part(const char* name)
    {
        auto* const found = editor.findChild<Part*>(QLatin1String(name));
        EXPECT_NE(found, nullptr) << name;
        return *found;
    }
    void click(const char* button)
    {
        auto& pressed = part<QAbstractButton>(button);
        ASSERT_TRUE(pressed.isVisible() && pressed.isEnabled()) << button;
        QTest::mouseClick(&pressed, Qt::LeftButton, {}, QPoint(12, pressed.height() / 2));
        ASSERT_TRUE(happens([&] { return isIdle(); })) << button;
    }
    void type(const char* field, const char* text)
    {
        auto& line = part<QLineEdit>(field);
        ASSERT_TRUE(line.isVisible()) << field;
        QTest::mouseClick(&line, Qt::LeftButton);
        line.selectAll();
        QTest::keyClick(&line, Qt::Key_Delete);
        QTest::keyClicks(&line, QString::fromUtf8(text));
    }
    void clickCell(int row, RuleColumn column)
    {
        const QRect cell = table().visualRect(table().model()->index(row, int(column)));
        QTest::mouseClick(table().viewport(), Qt::LeftButton, {}, QPoint(cell.left() + 10, cell.center().y()));
    }
    void showTab(const char* name) { tabs().setCurrentWidget(&part<QWidget>(name)); }

    QTableView& table() { return part<QTableView>("tableViewBL"); }
    QTabWidget& tabs() { return part<QTabWidget>("tabView"); }
    QString textOf(const char* field) { return part<QLineEdit>(field).text(); }
    QString titleOf(const char* button) { return part<QAbstractButton>(button).text().remove(u'&'); }
    bool isEnabled(const char* button) { return part<QAbstractButton>(button).isEnabled(); }
    int selectedRow()
    {
        const QModelIndexList rows = table().selectionModel()->selectedRows();
        return rows.isEmpty() ? -1 : rows.constFirst().row();
    }
    /// "x Text ads" a row.
    QStringList rows()
    {
        const QAbstractItemModel& model = *table().model();
        QStringList lines;
        for (int row = 0; row < model.rowCount(); ++row) {
            const bool isOn = model.index(row, 0).data(Qt::CheckStateRole).toInt() == Qt::Checked;
            lines.append((isOn ? QStringLiteral("x ") : QStringLiteral("- ")) + model.index(row, 1).data().toString() +
                         u' ' + model.index(row, 2).data().toString());
        }
        return lines;
    }
    QString answer() { return part<QLabel>("testAddressResultTF").text(); }
    QString notice() { return part<QLabel>("noticeTF").text(); }

    /// As another program adds rules.
    void saveElsewhere(const QList<BlacklistRule>& rules)
    {
        EXPECT_EQ(BlacklistStore(home, files).change([&](BlacklistManager& list) {
            for (const BlacklistRule& rule : rules)
                list.addToBlacklist(
                    BlacklistFilter::initWithRule(rule.rule, rule.type, rule.state, rule.caseSensitive));
            return true;
        }),
                  QString());
    }
    QList<BlacklistRule> saved() const
    {
        return BlacklistManager::initWithDatabase(files, home->blacklistFile()).rules();
    }

    TemporaryHome home;
    FailingFileStore files;
    NotingWorkspace workspace;
    StringTable texts = textsIn(QStringLiteral("en"));
    QtEventTimers timers;
    BlacklistEditorWinController editor{{home, files, workspace, texts, timers}};
};

} // namespace quarry::test
