// Runs the benchmarks, then prints the figures; exit status 1 when one could not be measured.
#include "figures.h"

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    FiguresReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return reporter.printFigures() ? 0 : 1;
}
