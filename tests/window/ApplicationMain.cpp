#include <QApplication>
#include <QPalette>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    // For pictures of how it looks to users of dark desktops.
    if (qEnvironmentVariableIsSet("QUARRY_DARK")) {
        QPalette dark(QColor(45, 45, 48), QColor(45, 45, 48));
        dark.setColor(QPalette::Base, QColor(30, 30, 30));
        QApplication::setPalette(dark);
    }
    return RUN_ALL_TESTS();
}
