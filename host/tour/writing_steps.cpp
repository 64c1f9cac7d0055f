// The steps of the tour that write, and the recipe in both directions.
#include "host/frames/frame_text.h"
#include "host/tour/tour.h"

namespace host {

namespace {

QVector<Point> recipePoints(const Tour &tour)
{
    return {tour.point("D_W:500x100"), tour.point("D_W:700x10"), tour.point("M_W:40x4")};
}

constexpr int RecipeWords = 114;
constexpr int RecipeBlocks = 3;

int recipeValue(int unit)
{
    return 1000 + 7 * unit;
}

QVector<int> recipeValues(int firstUnit, int count)
{
    QVector<int> values;
    for (int i = 0; i < count; ++i)
        values.append(recipeValue(firstUnit + i));
    return values;
}

QVector<int> bufferContent(const Tour &tour)
{
    QVector<int> values;
    for (int unit = 0; unit < RecipeWords; ++unit)
        values.append(tour.session.recipeUnit(unit));
    return values;
}

}  // namespace

void writeWords(Tour &tour)
{
    tour.begin("Writing two words"_s,
               "The driver shows a write at once; its request goes ahead of the "
               "polling."_s,
               2);
    const Point point = tour.point("D_W:200x2");
    const QVector<int> written = {1234, 5678};
    tour.prepare(point, {17, 4});
    tour.session.monitor({point});
    tour.run(1);
    tour.write(point, written);
    tour.show("shown", point);
    tour.report.check(
        "each word was reported when it was read and when it was "
        "written"_s,
        int(tour.changes.size()), 4);
    tour.run(1);
    tour.report.check("the request carried the values"_s,
                      readRequest(tour.exchanges.last().request()).words, written);
    tour.report.check("the controller holds them"_s, tour.readBack(point), written);
}

void writeOneBit(Tour &tour)
{
    tour.begin("Writing one bit"_s,
               "One request sets the bit inside the controller; its neighbours are "
               "not touched."_s,
               2);
    const Point word = tour.point("M_W:20");
    const Point bit = tour.point("M_bit:20.3");
    tour.prepare(word, {0x00F0});
    tour.session.monitor({word, bit});
    tour.run(1);
    tour.write(bit, {1});
    tour.run(1);
    tour.report.check("the request set bit 3 of M word 20"_s,
                      readRequest(tour.exchanges.last().request()).text,
                      "set bit 3 of M word 20"_s);
    tour.report.check("the controller's word went from 0x00F0 to 0x00F8"_s, tour.readBack(word),
                      QVector<int>{0x00F8});
}

void writeSeveralBits(Tour &tour)
{
    tour.begin("Writing several bits"_s,
               "No request sets four bits of two words: they are read, merged and "
               "written back."_s,
               2);
    const Point words = tour.point("M_W:21x2");
    tour.prepare(words, {0xA5A5, 0x5A5A});
    tour.write(tour.point("M_bit:21.14x4"), {1, 0, 1, 0});
    tour.run(2);
    tour.report.check("two exchanges"_s, tour.seen(Outcome::Good), 2);
    tour.report.check(
        "the controller's words went from 0xA5A5 0x5A5A to 0x65A5 "
        "0x5A59"_s,
        tour.readBack(words), QVector<int>{0x65A5, 0x5A59});
}

void writeRecipe(Tour &tour)
{
    tour.begin("Sending a recipe"_s,
               "114 values go from the host's recipe buffer to the controller, a "
               "request for each block."_s,
               RecipeBlocks);
    const QVector<Point> points = recipePoints(tour);
    const QVector<int> firstUnits = tour.session.setRecipe(points);
    for (int unit = 0; unit < RecipeWords; ++unit)
        tour.session.setRecipeUnit(unit, recipeValue(unit));
    tour.session.requestRecipeWrite();
    tour.finish();
    tour.report.check("3 requests"_s, tour.seen(Outcome::Good), RecipeBlocks);
    tour.report.check("the transfer has ended"_s, tour.session.recipeBusy(), false);
    for (int i = 0; i < points.size(); ++i)
        tour.report.check("the controller holds %1"_s.arg(tour.text(points[i])),
                          tour.readBack(points[i]), recipeValues(firstUnits[i], points[i].count));
}

void readRecipe(Tour &tour)
{
    tour.begin("Fetching the recipe"_s,
               "The same blocks the other way, into an emptied buffer; each value is "
               "announced."_s,
               RecipeBlocks);
    for (int unit = 0; unit < RecipeWords; ++unit)
        tour.session.setRecipeUnit(unit, 0);
    tour.session.requestRecipeRead();
    tour.finish();
    tour.report.check("3 requests"_s, tour.seen(Outcome::Good), RecipeBlocks);
    tour.report.check("114 values announced"_s, int(tour.recipeUnits.size()), RecipeWords);
    tour.report.check("the buffer holds what was sent before"_s, bufferContent(tour),
                      recipeValues(0, RecipeWords));
}

}  // namespace host
