#include "UpdaterScreen.h"

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setWindowIcon(QIcon(QStringLiteral(QUARRY_BUNDLE_DIR "/Resources/appicon-128.png")));
    return RUN_ALL_TESTS();
}
