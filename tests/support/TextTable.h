#pragma once

#include "support/QtPrinting.h"

#include <gtest/gtest.h>

#include <functional>

namespace quarry {

/// Holds an operation against a table in one text: "in→out" each, with '¦' between the rows.
inline void expectAll(const std::function<QString(const QString&)>& operation, QStringView table)
{
    for (const QStringView row : table.split(u'¦')) {
        const qsizetype arrow = row.indexOf(u'→');
        ASSERT_GE(arrow, 0) << qPrintable(row.toString());
        EXPECT_EQ(operation(row.first(arrow).toString()), row.mid(arrow + 1).toString()) << qPrintable(row.toString());
    }
}

} // namespace quarry
