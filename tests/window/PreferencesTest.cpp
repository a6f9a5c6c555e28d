#include "session/ProductSettings.h"
#include "window/WindowActions.h"
#include "window/WindowRig.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>

using namespace quarry;
using namespace quarry::test;

namespace {

TEST(PreferencesTest, WhatIsChangedIsWrittenForEveryProgramOfTheProduct)
{
    WindowRig rig;
    rig.window->actions().preferences->trigger();
    QDialog* sheet = rig.sheet();
    const auto box = [&](const char* name) { return sheet->findChild<QCheckBox*>(QLatin1String(name)); };
    const auto number = [&](const char* name) { return sheet->findChild<QSpinBox*>(QLatin1String(name)); };
    const auto line = [&](const char* name) { return sheet->findChild<QLineEdit*>(QLatin1String(name)); };
    EXPECT_FALSE(box("automatic")->isChecked());
    EXPECT_EQ(number("minutes")->value(), 30);
    EXPECT_EQ(number("newLinks")->text(), QStringLiteral("no limit"));
    QPushButton* const ok = sheet->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok);
    line("addressBing")->setText(QStringLiteral("http://127.0.0.1:8642/search?x"));
    EXPECT_FALSE(ok->isEnabled()) << "no address of a service";
    keepPicture(sheet, QStringLiteral("preferences-fault"));
    line("addressBing")->setText(QStringLiteral("http://127.0.0.1:8642"));
    box("automatic")->click();
    number("minutes")->setValue(45);
    box("checkForUpdates")->click();
    number("resultsPerService")->setValue(120);
    number("newLinks")->setValue(7);
    box("askIxquick")->click();
    keepPicture(sheet, QStringLiteral("preferences"));
    bool isAccepted = false;
    QObject::connect(sheet, &QDialog::accepted, sheet, [&] { isAccepted = true; });
    ok->click();
    ASSERT_TRUE(happens([&] { return isAccepted; }));

    const ProductSettings settings = ProductSettings::read(rig.home, rig.files, Date(0));
    EXPECT_TRUE(settings.automatic);
    EXPECT_EQ(settings.minutes, 45);
    EXPECT_FALSE(settings.checkForUpdates);
    EXPECT_EQ(settings.resultsPerService, 120);
    EXPECT_EQ(settings.newLinks, 7);
    EXPECT_EQ(settings.services.value(SearchService::Bing).address, QStringLiteral("http://127.0.0.1:8642"));
    EXPECT_EQ(settings.services.value(SearchService::Google).address, QString());
    EXPECT_FALSE(settings.services.value(SearchService::Ixquick).isAsked);
    EXPECT_TRUE(settings.services.value(SearchService::Bing).isAsked);
    EXPECT_EQ(rig.followed, QStringList{QStringLiteral("on every 45")});
}

TEST(PreferencesTest, WhatOtherProgramsChangedMeanwhileStays)
{
    WindowRig rig;
    const ProductSettings before = ProductSettings::read(rig.home, rig.files, Date(0));
    ProductSettings elsewhere = before;
    elsewhere.minutes = 90;
    elsewhere.services[SearchService::Yahoo].address = QStringLiteral("https://mirror.example");
    ASSERT_EQ(saveSettings(elsewhere, before, rig.home, rig.files), QString());
    ProductSettings here = before;
    here.services[SearchService::Bing].isAsked = false;
    ASSERT_EQ(saveSettings(here, before, rig.home, rig.files), QString());
    const ProductSettings now = ProductSettings::read(rig.home, rig.files, Date(0));
    EXPECT_EQ(now.minutes, 90);
    EXPECT_EQ(now.services.value(SearchService::Yahoo).address, QStringLiteral("https://mirror.example"));
    EXPECT_FALSE(now.services.value(SearchService::Bing).isAsked);
    // Back to the public address.
    ProductSettings reset = now;
    reset.services[SearchService::Yahoo].address.clear();
    ASSERT_EQ(saveSettings(reset, now, rig.home, rig.files), QString());
    EXPECT_EQ(ProductSettings::read(rig.home, rig.files, Date(0)).services, reset.services);
}

} // namespace
