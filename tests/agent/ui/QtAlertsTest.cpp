#include "agent/ui/QtAlerts.h"

#include "support/QtPrinting.h"
#include "support/Screen.h"

#include <QMessageBox>
#include <QPushButton>

#include <gtest/gtest.h>

using namespace quarry;
using namespace Qt::Literals::StringLiterals;

namespace {

QList<QMessageBox*> openBoxes()
{
    QList<QMessageBox*> boxes;
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (auto* box = qobject_cast<QMessageBox*>(window); box && box->isVisible())
            boxes.append(box);
    }
    return boxes;
}

QPushButton* buttonNamed(const QMessageBox& box, const QString& text)
{
    for (QPushButton* button : box.findChildren<QPushButton*>()) {
        if (button->text() == text)
            return button;
    }
    return nullptr;
}

constexpr int Closed = -1;
const Alerts::Alert Quit = {u"Quit <b>?"_s, u"No <i>more</i> refreshes"_s, {u"Quit"_s, u"More & more"_s, u"Cancel"_s}};

TEST(QtAlerts, AnswerWithTheButtonOrTheLastOneWhenClosed)
{
    QtAlerts alerts;
    for (const int button : {0, 1, 2, Closed}) {
        std::vector<int> answers;
        alerts.ask(Quit, [&](int answer) { answers.push_back(answer); });
        ASSERT_EQ(openBoxes().size(), 1);
        QMessageBox& box = *openBoxes().front();
        EXPECT_EQ(box.textFormat(), Qt::PlainText) << "a title is never markup";
        EXPECT_TRUE(box.informativeText().contains(QLatin1String("&lt;i&gt;more"))) << "nor is a text";
        EXPECT_EQ(box.defaultButton(), buttonNamed(box, Quit.buttons[0]));
        EXPECT_FALSE(box.isModal());
        // It is on the screen before anybody answers.
        ASSERT_TRUE(
            happens([&] { return pixelsLike(box.palette().window().color(), screenshot(), box.geometry()) > 1000; }));
        screenshot(u"alert"_s);
        if (button == Closed)
            box.close();
        else
            buttonNamed(box, QString(Quit.buttons[button]).replace(u'&', QLatin1String("&&")))->click();
        ASSERT_TRUE(happens([&] { return !answers.empty() && openBoxes().isEmpty(); }));
        EXPECT_EQ(answers, std::vector{button == Closed ? 2 : button});
    }
}

TEST(QtAlerts, ShowOneAlertATitle)
{
    int answered = 0;
    {
        QtAlerts alerts;
        const auto count = [&](int) { ++answered; };
        alerts.ask(Quit, count);
        alerts.ask(Quit, count);
        EXPECT_EQ(openBoxes().size(), 1);
        alerts.ask({u"Another"_s, {}, {u"OK"_s}}, [&](int) {
            ++answered;
            alerts.ask(Quit, count); // From within an answer: the one that is open stays.
        });
        EXPECT_EQ(openBoxes().size(), 2);
        openBoxes().back()->close();
        openBoxes().front()->close();
        ASSERT_TRUE(happens([&] { return answered == 2; }));
        alerts.ask(Quit, count);
        EXPECT_EQ(openBoxes().size(), 1) << "it can be asked again";
    }
    EXPECT_TRUE(openBoxes().isEmpty()) << "they close with their owner";
    EXPECT_EQ(answered, 2);
}

} // namespace
