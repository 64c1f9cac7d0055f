// A file, or standard output, that grows line by line and says when it cannot.
#pragma once

#include <QtCore/QFile>

#include <memory>

namespace host {

class OutputFile
{
public:
    enum Mode {
        Anew,   ///< an older file of the name is replaced
        Append  ///< an older file stays as it is, and what is written comes behind it
    };

    /** "-" is standard output. Throws Failure (bad input) when the file cannot be written. */
    OutputFile(const QString &path, Mode mode);

    /** Writes the text at once, so that whoever reads along has it. Throws Failure. */
    void write(const QString &text);

private:
    QFile m_file;
};

/**
 * Gets a CSV log ready to go on: an empty or missing file gets the heading, a log that ends with
 * the same columns nothing, one with other columns the heading behind its last line. Throws Failure
 * (bad input) for files that do not begin with such a heading: they are not touched.
 */
std::unique_ptr<OutputFile> openLog(const QString &path, const QString &heading);

}  // namespace host
