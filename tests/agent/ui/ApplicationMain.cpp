#include "FakeWatcher.h"

#include <QApplication>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    if (argc > 1 && qstrcmp(argv[1], "--fake-bar") == 0)
        return quarry::runFakeBar(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
