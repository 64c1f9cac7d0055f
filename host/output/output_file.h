// Files that the host writes: none is lost without a word. Those that grow line by line say when
// they cannot, and follow their name when logs are rotated; others are written in one go.
#pragma once

#include <QtCore/QFile>

#include <sys/stat.h>

namespace host {

/** What a kind of file is called, and looks like. */
struct FileKind
{
    const char *name;     ///< such as "trace"
    const char *content;  ///< a regular expression that its first 64 KB match
};

/**
 * Throws Failure (bad input) where writing would lose a file that is no older one of the kind. What
 * is empty, or no regular file, such as a pipe, may be written.
 */
void refuseOtherFile(const QString &path, const FileKind &kind);

/** Writes without a buffer of its own: what was written is either in the file or refused. */
class OutputFile
{
public:
    /**
     * "-" is standard output. With a heading the file is gone on with: an empty one gets it, and
     * one that ends under another gets it behind its last line. Without, an older one is emptied.
     * Throws Failure, see refuseOtherFile().
     */
    OutputFile(const QString &path, const FileKind &kind, const QString &heading = QString());

    /**
     * Writes the text at once, so that whoever reads along has it; into a new file where the old
     * one was moved away, under a new heading where it was emptied. Throws Failure.
     */
    void write(const QString &text);

    /** Opens the name again, if it is a file's. Throws Failure. */
    void reopen();

private:
    void open();
    void put(const QString &text);

    QFile m_file;
    FileKind m_kind;
    QString m_heading;
    bool m_isRegular = false;
};

/**
 * Writes the file, or replaces it: the old one stays until the new one is complete on the disk, and
 * its owner where the system lets him be.
 * "-" is standard output; what is no regular file (/dev/full, a pipe) is written into. Throws
 * Failure that names the file and the reason, such as a full disk.
 */
void replaceFile(const QString &path, const QByteArray &content);

}  // namespace host
