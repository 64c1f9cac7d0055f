// Draws how costs grow, as an SVG file.
#ifndef TOLVANE_BENCHMARK_GROWTH_PICTURE_H
#define TOLVANE_BENCHMARK_GROWTH_PICTURE_H

#include <string>
#include <utility>
#include <vector>

/** One curve: what it is, and its points (amount, cost). */
struct Curve
{
    std::string name;
    std::vector<std::pair<double, double>> points;
};

/** One panel of the picture; both axes are logarithmic, so proportional growth is a diagonal. */
struct Panel
{
    std::string title;
    std::string amountUnit;
    std::string costUnit;
    std::vector<Curve> curves;
};

/** Writes the panels side by side. Returns false when the file cannot be written. */
bool writeGrowthPicture(const std::string &path, const std::vector<Panel> &panels);

#endif
