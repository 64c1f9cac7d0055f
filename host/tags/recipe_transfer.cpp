// Fills and empties the recipe buffer and runs the transfers.
#include "host/tags/recipe_transfer.h"

#include "host/output/failure.h"

namespace host {

RecipeTransfer::RecipeTransfer(Connection &connection, const QVector<Tag> &tags)
    : m_connection(connection), m_tags(tags)
{
    QVector<Point> points;
    for (const Tag &tag : tags) {
        points.append(tag.point);
        m_allUnits += tag.point.count;
    }
    m_firstUnits = m_connection.session().setRecipe(points);
}

QVector<QVector<int>> RecipeTransfer::read()
{
    Session &session = m_connection.session();
    QVector<bool> filled(m_allUnits, false);
    session.recipeUnitRead = [&](int unit) {
        if (unit < m_allUnits && !filled[unit]) {
            filled[unit] = true;
            ++m_units;
        }
    };
    session.requestRecipeRead();
    run("read"_s, [](const Exchange &) {});
    session.recipeUnitRead = nullptr;
    if (filled.contains(false))
        throw Failure("the driver ended the recipe read before all was read"_s);

    QVector<QVector<int>> values;
    for (int tag = 0; tag < int(m_tags.size()); ++tag) {
        QVector<int> units;
        for (int i = 0; i < m_tags[tag].point.count; ++i)
            units.append(session.recipeUnit(m_firstUnits[tag] + i));
        values.append(units);
    }
    return values;
}

void RecipeTransfer::write(const QVector<QVector<int>> &values)
{
    Session &session = m_connection.session();
    for (int tag = 0; tag < int(m_tags.size()); ++tag)
        for (int i = 0; i < m_tags[tag].point.count; ++i)
            session.setRecipeUnit(m_firstUnits[tag] + i, values[tag][i]);
    session.requestRecipeWrite();
    run("written"_s, [this](const Exchange &exchange) {
        // Bits are written into words that were read for it: that read is no block of its own.
        if (exchange.frame.readCount == 0)
            m_units += exchange.frame.var.count;
    });
}

void RecipeTransfer::run(const QString &direction,
                         const std::function<void(const Exchange &)> &count)
{
    m_units = 0;
    QString lost;  // the block that ended it; those before it are done
    m_connection.observer = [&](const Exchange &exchange) {
        if (exchange.outcome == Outcome::GivenUp)
            lost = pointText(m_connection.driver(), blockOf(exchange.frame.var));
        if (exchange.outcome == Outcome::Good)
            count(exchange);
    };
    m_connection.beginStep();
    QStringList errors = m_connection.finish();
    m_connection.observer = nullptr;
    if (errors.isEmpty() && !m_connection.prove(m_tags.first().point)) {
        lost = "it"_s;
        errors = QStringList{"out of step: a reply may have been another request's"_s};
    }
    if (!errors.isEmpty())
        throw Failure(
            "%1 of %2 words and bits were %3, then the driver gave up %4: %5"_s.arg(m_units)
                .arg(m_allUnits)
                .arg(direction, lost, errors.first()));
}

}  // namespace host
