// A recipe's way to the controller and back, through the driver's recipe buffer.
#pragma once

#include "host/exchange/connection.h"
#include "host/tags/tags.h"

#include <functional>

namespace host {

class RecipeTransfer
{
public:
    /**
     * Registers the tags as the driver's recipe. The connection stays the caller's and is not used
     * for anything else meanwhile. Throws Failure (bad input) when tags overlap or are too many.
     */
    RecipeTransfer(Connection &connection, const QVector<Tag> &tags);

    /** Called after each block: blocks so far, and words and bits so far of all. */
    std::function<void(int blocks, int units, int allUnits)> progress;

    /** Reads all values: the words or bits of each tag. Throws Failure when a block is given up. */
    QVector<QVector<int>> read();

    /** Writes all values. Throws Failure when a block is given up. */
    void write(const QVector<QVector<int>> &values);

private:
    void run(const QString &direction, const std::function<void(const Exchange &)> &countBlock);

    Connection &m_connection;
    QVector<Tag> m_tags;
    QVector<int> m_firstUnits;  // of each tag, in the recipe buffer
    int m_allUnits = 0;
    int m_blocks = 0;
    int m_units = 0;
};

}  // namespace host
