// Texts as they stand in the programs' sources, in UTF-8. Qt has such an operator from version 6.4
// on only.
#pragma once

#include <QtCore/QString>

inline QString operator""_s(const char *text, size_t bytes)
{
    return QString::fromUtf8(text, int(bytes));
}
