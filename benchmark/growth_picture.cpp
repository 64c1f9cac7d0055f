// Draws how costs grow, as an SVG file.
#include "growth_picture.h"

#include <cmath>
#include <cstdio>
#include <fstream>

namespace {

constexpr double PanelWidth = 430;
constexpr double PlotLeft = 60;
constexpr double PlotTop = 50;
constexpr double PlotWidth = 330;
constexpr double PlotHeight = 230;
const char *const Colours[] = {"#1f5fa8", "#c0561a", "#3a7d34", "#7a3a8c"};

struct Range
{
    double low = 1e300;
    double high = 0;

    void include(double value)
    {
        low = std::min(low, std::pow(10, std::floor(std::log10(value))));
        high = std::max(high, std::pow(10, std::ceil(std::log10(value))));
    }
    double share(double value) const { return std::log10(value / low) / std::log10(high / low); }
};

std::string text(double x, double y, const std::string &what, const char *more = "")
{
    char buffer[400];
    std::snprintf(buffer, sizeof buffer, "<text x=\"%.1f\" y=\"%.1f\"%s>%s</text>\n", x, y, more,
                  what.c_str());
    return buffer;
}

std::string line(double x1, double y1, double x2, double y2)
{
    char buffer[200];
    std::snprintf(buffer, sizeof buffer,
                  "<path d=\"M%.1f %.1fL%.1f %.1f\" stroke=\"#ccc\" fill=\"none\"/>\n", x1, y1, x2,
                  y2);
    return buffer;
}

std::string decade(double value)
{
    char buffer[40];
    std::snprintf(buffer, sizeof buffer, "%g", value);
    return buffer;
}

std::string drawPanel(const Panel &panel, double left)
{
    Range amounts;
    Range costs;
    for (const Curve &curve : panel.curves) {
        for (const auto &point : curve.points) {
            amounts.include(point.first);
            costs.include(point.second);
        }
    }
    const double x0 = left + PlotLeft;
    const auto x = [&](double amount) { return x0 + PlotWidth * amounts.share(amount); };
    const auto y = [&](double cost) { return PlotTop + PlotHeight * (1 - costs.share(cost)); };

    std::string svg = text(x0, 22, panel.title, " font-weight=\"bold\"");
    svg += text(x0, 40, panel.costUnit) + text(x0 + PlotWidth, PlotTop + PlotHeight + 34,
                                               panel.amountUnit, " text-anchor=\"end\"");
    for (double v = amounts.low; v <= amounts.high * 1.01; v *= 10)
        svg += line(x(v), PlotTop, x(v), PlotTop + PlotHeight) +
               text(x(v), PlotTop + PlotHeight + 16, decade(v), " text-anchor=\"middle\"");
    for (double v = costs.low; v <= costs.high * 1.01; v *= 10)
        svg += line(x0, y(v), x0 + PlotWidth, y(v)) +
               text(x0 - 6, y(v) + 4, decade(v), " text-anchor=\"end\"");
    for (size_t i = 0; i < panel.curves.size(); ++i) {
        const Curve &curve = panel.curves[i];
        const std::string colour = Colours[i % 4];
        std::string path;
        for (const auto &point : curve.points) {
            char buffer[160];
            std::snprintf(buffer, sizeof buffer, "%s%.1f %.1f", path.empty() ? "M" : "L",
                          x(point.first), y(point.second));
            path += buffer;
            std::snprintf(buffer, sizeof buffer,
                          "<circle cx=\"%.1f\" cy=\"%.1f\" r=\"3\" fill=\"%s\"/>\n", x(point.first),
                          y(point.second), colour.c_str());
            svg += buffer;
        }
        svg += "<path d=\"" + path + "\" stroke=\"" + colour +
               "\" stroke-width=\"2\" fill=\"none\"/>\n";
        svg += text(x0 + 10, PlotTop + 18 + 16 * double(i), curve.name,
                    (" fill=\"" + colour + "\"").c_str());
    }
    return svg;
}

}  // namespace

bool writeGrowthPicture(const std::string &path, const std::vector<Panel> &panels)
{
    std::ofstream file(path);
    file << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\""
         << PanelWidth * double(panels.size())
         << "\" height=\"330\" font-family=\"sans-serif\" font-size=\"12\">\n"
         << "<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n";
    for (size_t i = 0; i < panels.size(); ++i)
        file << drawPanel(panels[i], PanelWidth * double(i));
    file << "</svg>\n";
    return bool(file.flush());
}
