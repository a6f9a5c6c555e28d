#pragma once

#include "support/QuarryProcess.h"
#include "support/TemporaryHome.h"

#include <gtest/gtest.h>

namespace quarry::test {

/// `quarry` over a home folder of its own.
class QuarryTest : public testing::Test {
protected:
    [[nodiscard]] Ran run(const QStringList& arguments) const { return runQuarry(home.path(), arguments); }
    /// Arguments as one line; those with blanks between double quotes.
    [[nodiscard]] Ran run(const char* line) const { return run(QProcess::splitCommand(QString::fromUtf8(line))); }

    TemporaryHome home;
};

} // namespace quarry::test
