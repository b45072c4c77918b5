#pragma once

#include <QByteArray>
#include <QString>

#include <ostream>

// Readable failure messages for Qt's string types in GoogleTest assertions.
inline void PrintTo(const QByteArray &bytes, std::ostream *os)
{
    *os << '"' << bytes.toStdString() << '"';
}

inline void PrintTo(const QString &text, std::ostream *os)
{
    *os << '"' << text.toStdString() << '"';
}
