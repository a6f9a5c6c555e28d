#include "window/WindowActions.h"
#include "window/WindowRig.h"

#include <QAbstractButton>
#include <QLabel>
#include <QMenuBar>

using namespace quarry;
using namespace quarry::test;

namespace {

class MnemonicsTest : public testing::TestWithParam<const char*> {};

/// Everything in the window that Alt and a letter reaches.
QStringList namesIn(const QWidget* widget)
{
    QStringList names;
    const QList<QLabel*> labels = widget->findChildren<QLabel*>();
    for (const QLabel* const label : labels)
        names += label->buddy() ? label->text() : QString();
    const QList<QAbstractButton*> buttons = widget->findChildren<QAbstractButton*>();
    for (const QAbstractButton* const button : buttons)
        names += button->text();
    return names;
}

void expectOneEach(const QStringList& names)
{
    QHash<QString, QString> taken;
    for (const QString& name : names) {
        const QString letter = QKeySequence::mnemonic(name).toString();
        EXPECT_FALSE(!letter.isEmpty() && taken.contains(letter))
            << taken.value(letter).toStdString() << " and " << name.toStdString();
        taken.insert(letter, name);
    }
    EXPECT_GT(taken.size(), 2) << "there are some";
}

TEST_P(MnemonicsTest, EachLetterMeansOneThing)
{
    WindowRig rig([](const QueryCorePtr& root) { root->addChild(QueryCore::initWithQuery(QStringLiteral("bread"))); },
                  QString::fromLatin1(GetParam()));
    QStringList menus;
    const QList<QAction*> ofBar = rig.window->menuBar()->actions();
    for (const QAction* const menu : ofBar)
        menus += menu->text();
    expectOneEach(menus);
    rig.select(QStringLiteral("bread"));
    const WindowActions& actions = rig.window->actions();
    for (QAction* const action : {actions.newQuery, actions.newAdvancedQuery, actions.newCombinedQuery,
                                  actions.queryFilters, actions.preferences}) {
        SCOPED_TRACE(action->text().toStdString());
        action->trigger();
        const QPointer<QDialog> sheet = rig.sheet();
        expectOneEach(namesIn(sheet));
        sheet->reject();
        ASSERT_TRUE(happens([&sheet] { return !sheet; }));
    }
}

INSTANTIATE_TEST_SUITE_P(Languages, MnemonicsTest, testing::Values("en", "fr", "de"));

} // namespace
