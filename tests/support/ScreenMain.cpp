#include "support/Screen.h"

#include <QIcon>

#include <gtest/gtest.h>

// The main of tests that look at windows.
int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setWindowIcon(QIcon(QStringLiteral(QUARRY_BUNDLE_DIR "/Resources/appicon-128.png")));
    // For pictures of how it looks to users of dark desktops.
    if (qEnvironmentVariableIsSet("QUARRY_DARK"))
        QApplication::setPalette(quarry::darkPalette());
    return RUN_ALL_TESTS();
}
