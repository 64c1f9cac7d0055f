// The figures people ask for, computed from the results of one run.
#ifndef TOLVANE_BENCHMARK_FIGURES_H
#define TOLVANE_BENCHMARK_FIGURES_H

#include <benchmark/benchmark.h>

#include <map>
#include <string>

/** Prints each result (of several repetitions, the median) as Google Benchmark does; keeps all. */
class FiguresReporter : public benchmark::ConsoleReporter
{
public:
    FiguresReporter();

    void ReportRuns(const std::vector<Run> &runs) override;

    /** Prints the figures with what is aimed at. Returns false when a result is missing. */
    bool printFigures() const;

private:
    struct Result
    {
        double nanoseconds;
        std::map<std::string, double> counters;
    };

    const Result *find(const std::string &name) const;
    double nanoseconds(const std::string &name) const;
    double counter(const std::string &name, const std::string &counterName) const;

    std::map<std::string, Result> m_best;
};

#endif
