// What the tests of the rooms share: tables, address ranges as texts, and the panel's side of the
// driver - its shared block, recipe buffer, mutex and callback.
#ifndef TOLVANE_TESTS_PANEL_H
#define TOLVANE_TESTS_PANEL_H

#include <QtCore/QRegularExpression>
#include <QtTest/QtTest>

#include <vector>

#include "protocol.h"

typedef std::vector<const char *> Cells;

/** A table of texts: the names of its columns; per row a name and the cells. */
inline void table(const Cells &columns, const std::vector<Cells> &rows)
{
    for (const char *column : columns)
        QTest::addColumn<QString>(column);
    for (const Cells &row : rows) {
        QTestData &data = QTest::newRow(row.at(0));
        for (size_t i = 1; i < row.size(); ++i)
            data << QString::fromLatin1(row.at(i));
    }
}

/** One range as a row writes it: "M_bit 1604 x21", "2:D_W 0 x2 @5", "TX 3 0001"; a count of 1 may
 * be left out. */
struct Range
{
    int station;
    QString name;
    int start;
    int count;
    int place;  ///< "@5": in the recipe buffer
    QByteArray values;
};

/** The ranges of a text; a station other than 1 stands before ":". */
inline QList<Range> ranges(const QString &text)
{
    static const QRegularExpression form(
        "(?:(\\d+):)?(\\w+) (-?\\d+)(?: x(-?\\d+))?(?: @(\\d+))?(?: ([0-9A-F]+)(?![^,;\\s]))?");
    QList<Range> result;
    for (auto all = form.globalMatch(text); all.hasNext();) {
        const QRegularExpressionMatch match = all.next();
        const auto number = [&match](int group) {
            return match.captured(group).isEmpty() ? 1 : match.captured(group).toInt();
        };
        result.append({number(1), match.captured(2), number(3), number(4), number(5),
                       QByteArray::fromHex(match.captured(6).toLatin1())});
    }
    return result;
}

inline QString rangeText(int station, const QString &name, int start, int count)
{
    return (station == 1 ? QString() : QString("%1:").arg(station)) +
           QString("%1 %2 x%3").arg(name).arg(start).arg(count);
}

inline QString rangeText(const AddressSpan &span)
{
    return rangeText(span.stationNo, REG_LIST[span.regNumber], span.startAddr, span.count);
}

template <typename Record>
QString rangeText(const Record &record)
{
    return rangeText(record.stationNo, record.regName, record.startAddr, record.count);
}

/** Bytes of one element in a value buffer; a name that is no word type's is a bit type's. */
inline int elementBytes(const QString &name)
{
    return QString("P_W M_W L_W K_W F_W D_W S_W T_W C_W N_W Z_W").split(' ').contains(name) ? 2 : 1;
}

/** The range as a record that has these four fields. */
template <typename Record>
Record recordOf(const Range &range)
{
    Record record;
    record.stationNo = range.station;
    record.regName = range.name;
    record.startAddr = range.start;
    record.count = range.count;
    return record;
}

inline VARIABLE item(const Range &range)
{
    VARIABLE item = recordOf<VARIABLE>(range);
    item.kind = 9;
    std::memcpy(item.valueBuf, range.values.constData(), size_t(range.values.size()));
    return item;
}

inline VARIABLE item(const char *text)
{
    return item(ranges(text).first());
}

inline QList<KEY_ADDRESS> keys(const QString &text)
{
    QList<KEY_ADDRESS> result;
    for (const Range &range : ranges(text)) {
        result.append(recordOf<KEY_ADDRESS>(range));
        result.last().bitMark = elementBytes(range.name) == 1 ? -1 : 0;
    }
    return result;
}

/** The panel runtime: the memory that it lends to the driver, and what it was told. */
class Panel
{
public:
    QByteArray shared = QByteArray(SharedBlockBytes, '\0');
    QByteArray buffer = QByteArray(8192, '\0');
    QStringList reports;  ///< "1 D_W 10": station and point; first arguments other than 7 in "()"

    static Panel &self()
    {
        static Panel panel;
        return panel;
    }

    static unsigned char *bytes(QByteArray &array)
    {
        return reinterpret_cast<unsigned char *>(array.data());
    }

    /** The driver as after loading, initialised with this block limit. */
    void start(const QString &blockLimit = "64")
    {
        shared.fill('\0');
        buffer.fill('\x5A');
        reports.clear();
        intf_setAddrValueChangeCallBack(hear);
        initProperty("7#0#0#3#" + blockLimit.toLatin1());
        intf_setRcpAddress({});
    }

    /** The result of intf_initProperty(), or -1 when it left its result pointer alone. */
    int initProperty(const QByteArray &propertyText)
    {
        int result = -1;
        const int returned = intf_initProperty(bytes(shared), this, bytes(buffer), &result,
                                               propertyText.constData(), &m_mutex);
        return result == 0 ? returned : -1;
    }

private:
    static void hear(int first, int stationNo, const QString &text, int address)
    {
        const QString report = QString("%1 %2 %3").arg(stationNo).arg(text).arg(address);
        self().reports.append(first == 7 ? report : QString("(%1) ").arg(first) + report);
    }

    QMutex m_mutex;
};

#endif
