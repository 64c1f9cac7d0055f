// The steps of the tour, a row each, in their order.
#include "host/frames/frame_text.h"
#include "host/tour/tour.h"

namespace host {

namespace {

/** As many values as told, each so much above the one before. */
Values series(int first, int step, int count)
{
    Values values;
    for (int i = 0; i < count; ++i)
        values.append(first + step * i);
    return values;
}

struct TourStep
{
    const char *title;
    const char *intent;  ///< what it shows
    int exchangesShown;  ///< so many of its exchanges are printed, the first ones
    void (*play)(Tour &);
};

constexpr TourStep Steps[] = {
    {"Who is there", "The driver names itself, its default line and its register types.", 0,
     [](Tour &tour) {
         tour.introduceDriver();
         tour.report.check("it is the driver that this host is made for", tour.driver.identity.name,
                           "tolvane_link"_s);
         tour.checkTypes();
     }},
    {"Checking addresses", "Nothing is sent for an address that the controller does not have.", 0,
     [](Tour &tour) {
         tour.checkAddress("D_W:100", "address number 100");
         tour.checkAddress("M_bit:20.5", "address number 325");
         tour.checkAddress("TX:35", "address number 35");
         tour.checkAddress("D_W:32767x2",
                           "address \"D_W:32767x2\": outside D_W, which reaches from 0 to 32767");
         tour.checkAddress("M_bit:20.16",
                           "address \"M_bit:20.16\": \"20.16\" is no address of the form DDDD.DD, "
                           "with a bit from 0 to 15");
     }},
    {"Registering what a screen shows",
     "Five points become three requests: close addresses share one, and bits come in their word.",
     3,
     [](Tour &tour) {
         tour.hold("D_W:300x3", {10, 20, 30});
         tour.hold("M_W:3", {0x0C0F});
         tour.report.check(
             "3 requests planned",
             tour.monitor({"D_W:100x2", "D_W:110", "D_W:300x3", "M_bit:0.0x4", "M_W:3"}), 3);
         tour.run(3);
         for (const char *word : {"D_W:100", "D_W:300", "M_W:3"})
             tour.report.check("%1 is what the reply carried"_s.arg(word), tour.values(word),
                               tour.wire(word));
     }},
    {"Polling",
     "The requests go round; the driver reports what has changed. The first three of each point:",
     0,
     [](Tour &tour) {
         tour.runUntil([&] { return tour.reports("M_bit:0.0") > 0; });
         tour.report.item("in all"_s, "%1 exchanges"_s.arg(tour.seen(Outcome::Good)));
         tour.report.check("the counter D_W:100 and the bit M_bit:0.0 were seen moving",
                           tour.reports("D_W:100") > 0, true);
         tour.report.check("nothing was reported that had not changed", tour.settled(), 0);
         tour.report.check("D_W:100 is what the latest reply carried", tour.values("D_W:100"),
                           tour.wire("D_W:100"));
     }},
    {"Writing two words",
     "The driver shows a write at once; its request goes ahead of the polling.", 2,
     [](Tour &tour) {
         const Values written{1234, 5678};
         tour.hold("D_W:200x2", {17, 4});
         tour.monitor({"D_W:200x2"});
         tour.run(1);
         tour.write("D_W:200x2", written);
         tour.show("shown", "D_W:200x2");
         tour.report.check("each word was reported when it was read and when it was written",
                           tour.reports("D_W:200") + tour.reports("D_W:201"), 4);
         tour.run(2);
         tour.report.check("the request carried the values",
                           readRequest(tour.last().request()).words, written);
         tour.report.check("the controller holds them", tour.held("D_W:200x2"), written);
     }},
    {"Writing one bit",
     "One request sets the bit inside the controller; its neighbours are not touched.", 2,
     [](Tour &tour) {
         tour.hold("M_W:20", {0x00F0});
         tour.monitor({"M_W:20", "M_bit:20.3"});
         tour.run(1);
         tour.write("M_bit:20.3", {1});
         tour.run(2);
         tour.report.check("the request set bit 3 of M word 20",
                           readRequest(tour.last().request()).text, "set bit 3 of M word 20");
         tour.report.check("the controller's word went from 0x00F0 to 0x00F8", tour.held("M_W:20"),
                           Values{0x00F8});
     }},
    {"Writing several bits",
     "No request sets four bits of two words: they are read, merged and written back.", 2,
     [](Tour &tour) {
         tour.hold("M_W:21x2", {0xA5A5, 0x5A5A});
         tour.monitor({});
         tour.write("M_bit:21.14x4", {1, 0, 1, 0});
         tour.run(2);
         tour.report.check("two exchanges", tour.seen(Outcome::Good), 2);
         tour.report.check("the controller's words went from 0xA5A5 0x5A5A to 0x65A5 0x5A59",
                           tour.held("M_W:21x2"), Values{0x65A5, 0x5A59});
     }},
    {"Reading once, on demand",
     "200 words exceed the block limit of 64: four requests, and one notice at the end.", 2,
     [](Tour &tour) {
         const Values pattern = series(0, 3, 200);
         tour.hold("D_W:300x200", pattern);
         tour.session.readOnce(tour.point("D_W:300x200"));
         tour.finish();
         tour.show("read", "D_W:300x200");
         tour.report.check("4 requests", tour.seen(Outcome::Good), 4);
         tour.report.check("one notice: done", tour.conditionReads, Values{true});
         tour.report.check("the values are those written there before", tour.values("D_W:300x200"),
                           pattern);
     }},
    {"Sending a recipe",
     "114 values go from the host's recipe buffer to the controller, a request for each block.", 3,
     [](Tour &tour) {
         tour.session.setRecipe(
             {tour.point("D_W:500x100"), tour.point("D_W:700x10"), tour.point("M_W:40x4")});
         for (int unit = 0; unit < 114; ++unit)
             tour.session.setRecipeUnit(unit, 1000 + 7 * unit);
         tour.session.requestRecipeWrite();
         tour.finish();
         tour.report.check("3 requests", tour.seen(Outcome::Good), 3);
         tour.report.check("the transfer has ended", tour.session.recipeBusy(), false);
         tour.report.check("the controller holds D_W:500x100", tour.held("D_W:500x100"),
                           series(1000, 7, 100));
         tour.report.check("the controller holds D_W:700x10", tour.held("D_W:700x10"),
                           series(1700, 7, 10));
         tour.report.check("the controller holds M_W:40x4", tour.held("M_W:40x4"),
                           series(1770, 7, 4));
     }},
    {"Fetching the recipe",
     "The same blocks the other way, into an emptied buffer; each value is announced.", 3,
     [](Tour &tour) {
         for (int unit = 0; unit < 114; ++unit)
             tour.session.setRecipeUnit(unit, 0);
         tour.session.requestRecipeRead();
         tour.finish();
         Values fetched;
         for (int unit = 0; unit < 114; ++unit)
             fetched.append(tour.session.recipeUnit(unit));
         tour.report.check("3 requests", tour.seen(Outcome::Good), 3);
         tour.report.check("114 values announced", tour.recipeUnits, 114);
         tour.report.check("the buffer holds what was sent before", fetched, series(1000, 7, 114));
     }},
    {"A controller that falls silent, and returns",
     "Its late replies answer requests that were given up; none of them may be taken for a new "
     "one's.",
     5,
     [](Tour &tour) {
         tour.monitor({"D_W:100x2"});
         tour.line.suspend();
         tour.runUntil([&] { return tour.seen(Outcome::GivenUp) > 0; });
         tour.report.check("sent again twice, as the retry limit of 3 says",
                           tour.seen(Outcome::Again), 2);
         tour.report.check("then given up, with the text for the operator", tour.last().errorText,
                           "1#D_W100(2)(0)");
         tour.monitor({"D_W:300x2"});
         tour.line.resume();
         tour.run(1);
         tour.report.check("the three late replies were thrown away", tour.last().stale.size(), 39);
         tour.report.check("the next request has its own reply", tour.values("D_W:300x2"),
                           Values{0, 3});
     }},
    {"Full speed", "1000 words round and round for two seconds, 127 to a request.", 1,
     [](Tour &tour) {
         SessionSettings settings;
         settings.blockLimit = 127;
         tour.session.restart(settings);
         tour.report.check("8 requests planned", tour.monitor({"D_W:1000x1000"}), 8);
         tour.measure(std::chrono::seconds(2));
     }},
};

}  // namespace

bool takeTour(const QString &driverPath, QTextStream &out)
{
    Tour tour(driverPath, out);
    Report &report = tour.report;
    report.line("A tour of the driver: what a panel does, against a simulated controller."_s);
    report.line(
        "-> is a request, <- its reply: the bytes, and what they say. \"ok\" is a result that was "
        "checked."_s);
    report.line();
    report.item("library"_s, driverPath);
    report.item("device"_s, "a simulated controller, in simulated time, at the pace of %1"_s.arg(
                                tour.driver.identity.serialLine));
    for (const TourStep &step : Steps) {
        tour.begin(step.title, step.intent, step.exchangesShown);
        step.play(tour);
    }
    report.line();
    report.line(report.wrong() > 0
                    ? "%1 of %2 checks went WRONG."_s.arg(report.wrong()).arg(report.checks())
                    : "All %1 checks were right."_s.arg(report.checks()));
    return report.wrong() == 0;
}

}  // namespace host
