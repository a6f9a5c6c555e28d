#include "blacklist/BlacklistArchive.h"
#include "window/WindowActions.h"
#include "window/WindowRig.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>

using namespace quarry;
using namespace quarry::test;

namespace {

const QString Bread = QStringLiteral("bread");

void fill(const QueryCorePtr& root)
{
    const QueryCorePtr bread = QueryCore::initWithQuery(Bread);
    bread->setCheckBlacklist(true);
    bread->addFilter(objectOfBlacklistRule({QStringLiteral("shop.example"), BlacklistType::Domain, true, false}));
    root->addChild(bread);
    bread->restoreResults({resultAt(QStringLiteral("http://one.example/articles/1")),
                           resultAt(QStringLiteral("http://one.example/ads/2")),
                           resultAt(QStringLiteral("http://two.example/ads/3"))},
                          {});
}

/// "domain shop.example", …: what the query's own rules say.
QStringList rulesOf(const QueryCorePtr& query)
{
    QStringList rules;
    const QList<FilterObject> filters = query->filters().value_or(QList<FilterObject>());
    for (const FilterObject& filter : filters) {
        const std::optional<BlacklistRule> rule = blacklistRuleOf(*filter);
        rules.append(QStringLiteral("%1 %2").arg(rule->type).arg(rule->rule.value_or(QString())));
    }
    return rules;
}

TEST(QueryFiltersTest, RulesAreTriedAddedReplacedAndTakenBack)
{
    WindowRig rig(fill);
    rig.select(Bread);
    rig.window->actions().queryFilters->trigger();
    QDialog* const sheet = rig.sheet();
    auto* const rule = sheet->findChild<QLineEdit*>(QStringLiteral("rule"));
    auto* const type = sheet->findChild<QComboBox*>();
    auto* const verdict = sheet->findChild<QLabel*>(QStringLiteral("verdict"));
    auto* const list = sheet->findChild<QTreeWidget*>(QStringLiteral("filters"));
    QTest::keyClicks(rule, QStringLiteral("/ads/"));
    EXPECT_TRUE(happens(
        [&] { return verdict->text() == QStringLiteral("Would catch 2 of 3 known addresses of this query."); }));
    QTest::keyClick(rule, Qt::Key_Return);
    EXPECT_TRUE(sheet->isVisible()) << "Return adds the rule; it does not accept the sheet";
    EXPECT_EQ(list->topLevelItemCount(), 2);

    type->setCurrentIndex(3);
    QTest::keyClicks(rule, QStringLiteral("a{2"));
    EXPECT_TRUE(verdict->text().contains(QLatin1String("character 2"))) << verdict->text().toStdString();
    QTest::keyClick(rule, Qt::Key_Return);
    EXPECT_EQ(list->topLevelItemCount(), 2) << "a faulty expression is no rule";
    list->setCurrentItem(list->topLevelItem(0));
    EXPECT_EQ(rule->text(), QStringLiteral("shop.example"));
    rule->setText(QStringLiteral("mill.example"));
    const QList<QPushButton*> buttons = sheet->findChildren<QPushButton*>();
    for (QPushButton* const button : buttons) {
        if (button->text() == rig.texts.text(QStringLiteral("212_Replace")))
            button->click();
    }
    keepPicture(sheet, QStringLiteral("filters"));
    sheet->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->click();
    const QStringList expected = {QStringLiteral("2 mill.example"), QStringLiteral("1 /ads/")};
    EXPECT_EQ(rulesOf(rig.stored(Bread)), expected);
    EXPECT_EQ(rulesOf(rig.node(Bread)), expected);

    rig.undo();
    EXPECT_EQ(rulesOf(rig.stored(Bread)), QStringList{QStringLiteral("2 shop.example")});
}

TEST(QueryFiltersTest, WordsAreHighlightedAndLeavingTheBlacklistIsExplained)
{
    WindowRig rig(fill);
    rig.select(Bread);
    rig.window->actions().queryFilters->trigger();
    QDialog* const sheet = rig.sheet();
    auto* const words = sheet->findChild<QLineEdit*>(QStringLiteral("highlightWords"));
    auto* const leaving = sheet->findChild<QLabel*>(QStringLiteral("leaving"));
    EXPECT_FALSE(words->isEnabled());
    EXPECT_FALSE(leaving->isVisible());
    sheet->findChild<QCheckBox*>(QStringLiteral("highlights"))->click();
    QTest::keyClicks(words, QStringLiteral("crust crumb"));
    sheet->findChild<QCheckBox*>(QStringLiteral("blacklist"))->click();
    sheet->findChild<QCheckBox*>(QStringLiteral("digests"))->click();
    EXPECT_TRUE(leaving->isVisible());
    keepPicture(sheet, QStringLiteral("filters-leaving"));
    sheet->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->click();
    EXPECT_FALSE(rig.node(Bread)->isCheckingBlacklist());
    const QueryCorePtr stored = rig.stored(Bread);
    EXPECT_TRUE(stored->isHighlightActive());
    EXPECT_EQ(stored->highlight(), QStringLiteral("crust crumb"));
    EXPECT_TRUE(stored->isComputingChecksum());
    EXPECT_TRUE(stored->isCheckingBlacklist()) << "as the sheet says: read again, it is subscribed again";
}

} // namespace
