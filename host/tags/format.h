// How values are written: the formats, and numbers scaled to what they measure.
#pragma once

#include <QtCore/QString>
#include <QtCore/QVector>

namespace host {

enum class Format {
    Plain,  ///< a word as 0 to 65535, a bit as 0 or 1
    Int16,
    UInt16,
    Int32,  ///< two words, the low one first; the high one first with Form::highFirst
    UInt32,
    Float,
    Hex,    ///< a word as 0x0000 to 0xFFFF
    Bin,    ///< a word as 0b and 16 digits
    Bcd,    ///< a word whose four digits are decimal ones, 0 to 9999
    String  ///< two characters (Latin-1) a word, the first in the low byte
};

/** One value's form. Bit types are always Plain. */
struct Form
{
    Format format = Format::Plain;
    bool highFirst = false;  ///< high word first; of strings the high byte
    int length = 0;          ///< characters of a string
    // What is shown is the number times scale plus offset. Of numbers only.
    double scale = 1;
    double offset = 0;
    int decimals = -1;  ///< digits behind the point; -1: as many as it takes

    int words() const;      ///< that one value takes
    bool isNumber() const;  ///< can be scaled
    bool isConverted() const { return scale < 1 || scale > 1 || offset < 0 || offset > 0; }
    QString expectation() const;  ///< such as "a whole number from 0 to 65535"
};

/**
 * The form of a name such as "int32", "float-be" or "string:8". Throws Failure (bad input) that
 * lists the names.
 */
Form formNamed(const QString &name);

/**
 * One value's text. Bytes of a string that are no printable Latin-1 are written as \x1F, and a
 * backslash twice; the zeros that fill it up are left out. A word that is no BCD number is written
 * as hex.
 */
QString valueText(const Form &form, const QVector<int> &units, int first);

/**
 * The words (or the bit) of a text that valueText() could have written; numbers without sign may
 * be written as 0x.... ok is false when the text is no value of the form.
 */
QVector<int> unitsOfText(const Form &form, const QString &text, bool *ok);

}  // namespace host
