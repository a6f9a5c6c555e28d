#include "WindowRig.h"
#include "database/ServiceHealthFile.h"
#include "session/ServiceStates.h"
#include "window/HealthDialog.h"
#include "window/RefreshBar.h"

#include <QLabel>
#include <QTableWidget>
#include <QToolButton>

using namespace quarry;
using namespace quarry::test;

namespace {

QStringList statesIn(const HealthDialog& dialog)
{
    const auto* const table = dialog.findChild<QTableWidget*>();
    QStringList lines;
    for (int row = 0; row < table->rowCount(); ++row)
        lines.append(table->item(row, 0)->text() + QStringLiteral(": ") + table->item(row, 1)->text());
    return lines;
}

TEST(HealthTest, SaysHowEachServiceDidInTheUsersLanguage)
{
    const TemporaryHome home;
    DiskFileStore files;
    const QString gateway = QStringLiteral("http://127.0.0.1:8642");
    ASSERT_TRUE(writeFile(home->searchServicesFile(),
                          R"(<?xml version="1.0"?><plist version="1.0"><dict>
<key>Google</key><dict><key>scheme</key><string>http</string><key>host</key><string>127.0.0.1</string>
<key>port</key><integer>8642</integer></dict>
<key>Exalead</key><dict><key>enabled</key><false/></dict></dict></plist>)"));
    ServiceHealth google;
    google.results = 30;
    google.judgedAs(ServiceVerdict::Results).pages = 3;
    google.judgedAs(ServiceVerdict::Unreachable).pages = 1;
    ServiceHealth bing;
    bing.judgedAs(ServiceVerdict::Blocked) = {2, QStringLiteral("HTTP status 429")};
    bing.judgedAs(ServiceVerdict::NothingFound).pages = 1;
    ServiceHealth yahoo;
    yahoo.judgedAs(ServiceVerdict::Blocked).pages = 1;
    const SearchServices publicOnes;
    const QString error = ServiceHealthFile(home, files)
                              .add({Date(800000000.0),
                                    false,
                                    {{SearchService::Google, google},
                                     {SearchService::Bing, bing},
                                     {SearchService::Yahoo, yahoo},
                                     {SearchService::Ixquick, google}},
                                    {{SearchService::Google, gateway},
                                     {SearchService::Bing, publicOnes.origin(SearchService::Bing)},
                                     {SearchService::Yahoo, publicOnes.origin(SearchService::Yahoo)},
                                     {SearchService::Ixquick, QStringLiteral("http://elsewhere.example")}}});
    ASSERT_EQ(error, QString());

    struct Case {
        const char* language;
        QStringList states;
    };
    const Case cases[] = {
        {"en",
         {QStringLiteral("Google: results (1 of 4 pages could not be read)"),
          QStringLiteral("Yahoo: blocked (a page that asks whether a person is there)"),
          QStringLiteral("Bing: blocked (HTTP status 429; 2 of 3 pages)"), QStringLiteral("Exalead: switched off"),
          QStringLiteral("Ixquick: not asked yet")}},
        {"de",
         {QStringLiteral("Google: Ergebnisse (1 von 4 Seiten nicht lesbar)"),
          QStringLiteral("Yahoo: gesperrt (eine Seite, die fragt, ob dort ein Mensch ist)"),
          QStringLiteral("Bing: gesperrt (HTTP status 429; 2 von 3 Seiten)"), QStringLiteral("Exalead: abgeschaltet"),
          QStringLiteral("Ixquick: noch nicht befragt")}},
    };
    for (const Case& each : cases) {
        const StringTable texts = windowTexts(QString::fromLatin1(each.language));
        HealthDialog dialog(texts);
        dialog.show(serviceStates(home, files));
        EXPECT_EQ(statesIn(dialog), each.states);
        keepPicture(&dialog, QStringLiteral("health-") + QString::fromLatin1(each.language));
    }
}

TEST(HealthTest, ARefreshEndsWithTheServicesThatFailed)
{
    const StringTable texts = windowTexts();
    QAction stop;
    QAction health(QStringLiteral("health"));
    RefreshBar bar(texts, &stop, &health);
    RefreshState state;
    state.end = RefreshState::End::AllUpdated;
    state.updated = 2;
    state.services = {{SearchService::Google, ServiceVerdict::Results},
                      {SearchService::Bing, ServiceVerdict::NothingFound}};
    bar.QWidget::show();
    bar.show(state);
    const auto* const text = bar.findChild<QLabel*>();
    const QString well = text->text();
    EXPECT_FALSE(well.contains(u'(')) << qPrintable(well);
    state.services[SearchService::Yahoo] = ServiceVerdict::Unreachable;
    state.services[SearchService::Bing] = ServiceVerdict::Blocked;
    state.services[SearchService::Exalead] = ServiceVerdict::Unreachable;
    bar.show(state);
    EXPECT_EQ(text->text(), well + QStringLiteral(" (blocked: Bing; unreachable: Yahoo, Exalead)"));
    const QList<QToolButton*> buttons = bar.findChildren<QToolButton*>();
    EXPECT_TRUE(std::any_of(buttons.begin(), buttons.end(), [&](const QToolButton* button) {
        return button->defaultAction() == &health && button->isVisible();
    }));
}

} // namespace
