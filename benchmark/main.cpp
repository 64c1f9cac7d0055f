// Runs the benchmarks, then prints the figures and draws how costs grow; exit status 1 when a
// figure could not be measured.
#include "figures.h"

#include <cstdio>

int main(int argc, char **argv)
{
    // --growth=FILE is ours; what is left is Google Benchmark's.
    const std::string option = "--growth=";
    std::string picture;
    if (argc > 1 && std::string(argv[1]).compare(0, option.size(), option) == 0) {
        picture = std::string(argv[1]).substr(option.size());
        argv[1] = argv[0];
        ++argv;
        --argc;
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    FiguresReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    if (!reporter.printFigures())
        return 1;
    if (!picture.empty() && !reporter.drawGrowth(picture)) {
        std::fprintf(stderr, "cannot draw the growth to %s\n", picture.c_str());
        return 1;
    }
    return 0;
}
