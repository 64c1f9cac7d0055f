// The figures people ask for, computed from the results of one run.
#include "figures.h"

#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <limits>

namespace {

const double kMissing = std::numeric_limits<double>::quiet_NaN();

/** One line of the table; a figure that could not be computed makes the run fail. */
bool print(const char *what, double figure, const char *unit, double aim)
{
    std::printf("  %-58s %8.2f %-6s (at most %g)%s\n", what, figure, unit, aim,
                std::isnan(figure) ? "  NOT MEASURED"
                : figure <= aim    ? ""
                                   : "  MISSED");
    return !std::isnan(figure);
}

}  // namespace

FiguresReporter::FiguresReporter() : ConsoleReporter(isatty(STDOUT_FILENO) ? OO_Color : OO_None)
{
}

void FiguresReporter::ReportRuns(const std::vector<Run> &runs)
{
    std::vector<Run> shown;
    for (const Run &run : runs) {
        if (run.repetitions == 1 || run.aggregate_name == "median")
            shown.push_back(run);
    }
    if (!shown.empty())
        ConsoleReporter::ReportRuns(shown);
    for (const Run &run : runs) {
        if (run.run_type != Run::RT_Iteration || run.error_occurred)
            continue;
        Result result = {
            run.GetAdjustedCPUTime() * 1e9 / benchmark::GetTimeUnitMultiplier(run.time_unit), {}};
        for (const auto &counter : run.counters)
            result.counters[counter.first] = counter.second.value;
        const auto known = m_best.find(run.benchmark_name());
        if (known == m_best.end())
            m_best.emplace(run.benchmark_name(), result);
        else if (result.nanoseconds < known->second.nanoseconds)
            known->second = result;
    }
}

const FiguresReporter::Result *FiguresReporter::find(const std::string &name) const
{
    const auto found = m_best.find(name);
    return found == m_best.end() ? nullptr : &found->second;
}

double FiguresReporter::nanoseconds(const std::string &name) const
{
    const Result *result = find(name);
    return result ? result->nanoseconds : kMissing;
}

double FiguresReporter::counter(const std::string &name, const std::string &counterName) const
{
    const Result *result = find(name);
    if (!result || result->counters.count(counterName) == 0)
        return kMissing;
    return result->counters.at(counterName);
}

bool FiguresReporter::printFigures() const
{
    const double bare = nanoseconds("BareLoop/127");
    const std::string still = "Exchange/words:127/areas:128/changed:0";
    const std::string moved = "Exchange/words:127/areas:50000/changed:1";
    std::printf("\nFigures (best of the repetitions; ratios within this run):\n");
    bool complete = true;
    complete &= print("unchanged exchange of 127 words over the bare loop",
                      nanoseconds(still) / bare, "times", 2.8);
    complete &= print("the same with all words changed", nanoseconds(moved) / bare, "times", 13.5);
    complete &= print("its growth from 128 to 50,000 data areas",
                      nanoseconds("Exchange/words:127/areas:50000/changed:0") / nanoseconds(still),
                      "times", 1.2);
    const double inTurn = nanoseconds("ExchangeInTurn/areas:50000/changed:0");
    complete &= print("the blocks of 50,000 data areas in turn over the bare loop", inTurn / bare,
                      "times", 4.4);
    complete &= print("its growth from 5,000 to 50,000 data areas",
                      inTurn / nanoseconds("ExchangeInTurn/areas:5000/changed:0"), "times", 1.1);
    complete &=
        print("heap allocations of an unchanged exchange", counter(still, "allocations"), "", 2);
    complete &=
        print("heap allocations of a changed exchange", counter(moved, "allocations"), "", 2);
    complete &= print("registering 10,000 scattered keys",
                      nanoseconds("Register/10000/manual_time") / 1e6, "ms", 3);
    complete &= print("heap held by 10,000 registered keys",
                      counter("Register/10000/manual_time", "heap") / 1e6, "MB", 8);
    complete &= print("intf_setData of a word, 512 writes queued",
                      nanoseconds("SetData/queued:512") / 1e3, "us", 3);
    complete &= print("intf_getData of 64 words, 50,000 data areas",
                      nanoseconds("GetData/words:64/areas:50000") / 1e3, "us", 1);
    // 14 bytes out, 4 a word and 5 back, 10 bits a byte.
    const double wire = (14 + 127 * 4 + 5) * 10 / 115200.0 * 1e9;
    complete &= print("share of this core at a full 115200 line, all words changing",
                      nanoseconds(moved) / wire * 100, "%", 1);
    return complete;
}
