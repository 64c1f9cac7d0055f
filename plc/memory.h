// The simulated controller's memory: the words of every device, by device letter.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QVector>

#include <vector>

namespace plc {

/**
 * The words of all devices, 0 at the start. A device is named by the letter that link frames carry
 * ('a' is D); an unknown letter is a device without words.
 */
class Memory
{
public:
    Memory();

    /** The letters of all devices. */
    static QByteArray devices();
    /** How many words a device has, numbered from 0; 0 for an unknown letter. */
    static int wordCount(char device);
    /** A device's name as engineers write it, such as "D" or "TX"; empty for an unknown letter. */
    static QByteArray name(char device);
    /** The letter of the device of that name, upper case; 0 for an unknown name. */
    static char letter(const QByteArray &name);

    /** A word's value; 0 when there is no such word. */
    quint16 word(char device, int number) const;
    /** Stores a word; changes nothing when there is no such word. */
    void setWord(char device, int number, quint16 value);

private:
    std::vector<QVector<quint16>> m_words;  ///< by device, in the order of devices()
};

}  // namespace plc
