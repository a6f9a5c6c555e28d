#pragma once

#include <QString>
#include <QStringList>

#include <ostream>

// How a failed comparison shows Qt's texts; found by GoogleTest in the namespace of the types.

inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}

inline void PrintTo(const QStringList& texts, std::ostream* out)
{
    *out << '[' << texts.join(QLatin1String(" | ")).toStdString() << ']';
}
