#include "window/QuerySheet.h"

#include "window/WindowActions.h"
#include "window/WindowRig.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>

using namespace quarry;
using namespace quarry::test;

namespace {

const QString Bread = QStringLiteral("bread");
const QString Pond = QStringLiteral("pond");

void fill(const QueryCorePtr& root)
{
    const QueryCorePtr folder = QueryCore::initWithQueryFolder(QStringLiteral("Garden"));
    root->addChild(folder);
    const QueryCorePtr pond = QueryCore::initWithQuery(Pond);
    folder->addChild(pond);
    const QueryCorePtr bread = QueryCore::initWithQuery(Bread);
    root->addChild(bread);
    const ResultList results = {resultAt(QStringLiteral("http://one.example/articles/1")),
                                resultAt(QStringLiteral("http://one.example/shop/2")),
                                resultAt(QStringLiteral("http://two.example/articles/3"))};
    const bool isIn = bread->replaceResultsIfUnchanged(bread->snapshot().generation, results, Date(800000000.0));
    EXPECT_TRUE(isIn);
}

QLineEdit* line(QDialog* sheet, const char* name)
{
    return sheet->findChild<QLineEdit*>(QLatin1String(name));
}

/// The field for the address expression: the only one without a name of its own in the form.
QLineEdit* expressionLine(QDialog* sheet)
{
    const QList<QLineEdit*> lines = sheet->findChildren<QLineEdit*>();
    for (QLineEdit* const each : lines) {
        if (each->accessibleName().startsWith(QLatin1String("Expression")))
            return each;
    }
    return nullptr;
}

QPushButton* button(QDialog* sheet, QDialogButtonBox::StandardButton which)
{
    return sheet->findChild<QDialogButtonBox*>()->button(which);
}

QString labelText(QDialog* sheet, const char* name)
{
    const auto* const label = sheet->findChild<QLabel*>(QLatin1String(name));
    return label->isVisible() ? label->text() : QString();
}

TEST(QuerySheetTest, WordsTypedAndReturnMakeAQueryInTheCurrentFolder)
{
    WindowRig rig(fill);
    rig.select(QStringLiteral("Garden"));
    rig.window->actions().newQuery->trigger();
    QDialog* const sheet = rig.sheet();
    EXPECT_FALSE(button(sheet, QDialogButtonBox::Ok)->isEnabled()) << "a query needs words";
    QTest::keyClick(line(sheet, "words"), Qt::Key_Return);
    EXPECT_TRUE(sheet->isVisible());
    QTest::keyClicks(line(sheet, "words"), QStringLiteral(" rye starter "));
    QTest::keyClick(line(sheet, "words"), Qt::Key_Return);
    const QueryCorePtr made = rig.node(QStringLiteral("rye starter"));
    ASSERT_TRUE(made);
    EXPECT_EQ(made->parent()->title(), QStringLiteral("Garden"));
    EXPECT_EQ(made->kind(), QueryKind::Plain);
    EXPECT_EQ(rig.window->treePane().currentUuid(), made->UUID());
    EXPECT_TRUE(rig.stored(QStringLiteral("rye starter")));
}

TEST(QuerySheetTest, AFaultyExpressionIsPointedAtAndNeverAccepted)
{
    WindowRig rig(fill);
    rig.window->actions().newAdvancedQuery->trigger();
    QDialog* const sheet = rig.sheet();
    line(sheet, "words")->setText(QStringLiteral("rye"));
    line(sheet, "site")->setText(QStringLiteral("https://mill.example/flour?x=1"));
    QLineEdit* const expression = expressionLine(sheet);
    QTest::keyClicks(expression, QStringLiteral("/(articles"));
    EXPECT_TRUE(labelText(sheet, "fault").contains(QLatin1String("Parentheses")))
        << labelText(sheet, "fault").toStdString();
    EXPECT_EQ(labelText(sheet, "pointer"), QStringLiteral("/(articles\n ^"));
    EXPECT_FALSE(button(sheet, QDialogButtonBox::Ok)->isEnabled());
    QTest::keyClick(expression, Qt::Key_Return);
    EXPECT_TRUE(sheet->isVisible());
    keepPicture(sheet, QStringLiteral("sheet-faulty"));

    QTest::keyClicks(expression, QStringLiteral("|papers)/"));
    EXPECT_EQ(labelText(sheet, "fault"), QString());
    EXPECT_TRUE(happens([&] { return labelText(sheet, "count") == QLatin1String("Matches 2 of 3 known addresses:"); }));
    auto* const tester = sheet->findChild<QListWidget*>();
    EXPECT_EQ(tester->item(1)->text(), QStringLiteral("http://two.example/articles/3"));
    EXPECT_FALSE(tester->item(1)->font().strikeOut());
    EXPECT_TRUE(tester->item(2)->font().strikeOut());
    keepPicture(sheet, QStringLiteral("sheet-advanced"));
    sheet->findChild<QComboBox*>(QStringLiteral("order"))->setCurrentIndex(2);
    button(sheet, QDialogButtonBox::Ok)->click();
    const QueryCorePtr made = rig.stored(QStringLiteral("rye"));
    ASSERT_TRUE(made);
    EXPECT_EQ(made->kind(), QueryKind::Advanced);
    EXPECT_EQ(made->wordsRestriction(), 3);
    EXPECT_EQ(made->websiteRestriction(), QStringLiteral("mill.example"));
    EXPECT_EQ(made->urlRegularExpressions(), QStringLiteral("/(articles|papers)/"));
}

TEST(QuerySheetTest, ACombinedQueryTakesChosenAndTypedTexts)
{
    WindowRig rig(fill);
    rig.window->actions().newCombinedQuery->trigger();
    QDialog* const sheet = rig.sheet();
    auto* const entry = sheet->findChild<QComboBox*>(QStringLiteral("member"));
    entry->setCurrentIndex(entry->findText(Pond));
    QTest::keyClick(entry, Qt::Key_Return);
    EXPECT_TRUE(sheet->isVisible()) << "Return adds the text; it does not accept the sheet";
    EXPECT_FALSE(button(sheet, QDialogButtonBox::Ok)->isEnabled());
    EXPECT_NE(labelText(sheet, "objection"), QString());
    QTest::keyClicks(entry->lineEdit(), QStringLiteral("spelt starter"));
    QTest::keyClick(entry, Qt::Key_Return);
    QTest::keyClicks(entry->lineEdit(), QStringLiteral("not added yet"));
    line(sheet, "name")->setText(QStringLiteral("Starters"));
    keepPicture(sheet, QStringLiteral("sheet-combined"));
    button(sheet, QDialogButtonBox::Ok)->click();
    const QueryCorePtr made = rig.stored(QStringLiteral("Starters"));
    ASSERT_TRUE(made);
    EXPECT_EQ(made->combinedQueries(),
              (QStringList{Pond, QStringLiteral("spelt starter"), QStringLiteral("not added yet")}));
}

TEST(QuerySheetTest, AnEditedQueryKeepsItsResultsIsDueAgainAndCanBeTakenBack)
{
    WindowRig rig(fill);
    rig.select(Bread);
    const Date before = *rig.node(Bread)->date();
    rig.window->actions().editQuery->trigger();
    QDialog* sheet = rig.sheet();
    EXPECT_EQ(line(sheet, "words")->text(), Bread);
    button(sheet, QDialogButtonBox::Ok)->click();
    EXPECT_EQ(rig.node(Bread)->date(), before) << "nothing was changed";

    rig.window->actions().editQuery->trigger();
    sheet = rig.sheet();
    line(sheet, "words")->setText(QStringLiteral("bread oven"));
    line(sheet, "site")->setText(QStringLiteral("one.example"));
    button(sheet, QDialogButtonBox::Ok)->click();
    const QueryCorePtr changed = rig.stored(QStringLiteral("bread oven"));
    ASSERT_TRUE(changed);
    EXPECT_EQ(changed->kind(), QueryKind::Advanced);
    EXPECT_EQ(changed->date(), Date::reference());
    EXPECT_EQ(changed->nbItems(), 3);

    rig.undo();
    const QueryCorePtr again = rig.stored(Bread);
    ASSERT_TRUE(again);
    EXPECT_EQ(again->kind(), QueryKind::Plain);
    EXPECT_EQ(again->date(), before);
}

TEST(QuerySheetTest, WhatWasTypedOutlivesAQueryThatIsRemovedMeanwhile)
{
    WindowRig rig(fill);
    rig.select(Bread);
    rig.window->actions().editQuery->trigger();
    QDialog* const sheet = rig.sheet();
    line(sheet, "words")->setText(QStringLiteral("bread oven"));
    rig.edit([&](QueryDatabaseEngine& database) {
        database.currentRoot()->removeChild(database.queryForUUID(rig.node(Bread)->UUID()));
    });
    ASSERT_TRUE(happens([&] { return !rig.node(Bread); }));
    button(sheet, QDialogButtonBox::Ok)->click();
    auto* const question = qobject_cast<QMessageBox*>(rig.sheet());
    ASSERT_TRUE(question);
    keepPicture(question, QStringLiteral("removed-meanwhile"));
    question->button(QMessageBox::Yes)->click();
    EXPECT_TRUE(rig.stored(QStringLiteral("bread oven")));
}

} // namespace
