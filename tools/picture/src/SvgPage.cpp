#include "picture/SvgPage.h"

#include <iomanip>
#include <locale>

namespace tvk::picture {

namespace {

std::string escaped(const std::string& words) {
    std::string safe;
    for (const char c : words) {
        switch (c) {
            case '&':
                safe += "&amp;";
                break;
            case '<':
                safe += "&lt;";
                break;
            case '>':
                safe += "&gt;";
                break;
            default:
                safe += c;
        }
    }
    return safe;
}

void put(std::ostream& stream, const std::vector<Point>& points) {
    const char* separator = "";
    for (const Point& point : points) {
        stream << separator << point.x << ',' << point.y;
        separator = " ";
    }
}

}  // namespace

SvgPage::SvgPage(int width, int height) : width_(width), height_(height) {
    // A tenth of a pixel is finer than the eye, and keeps the file small.
    body_.imbue(std::locale::classic());
    body_ << std::fixed << std::setprecision(1);
}

void SvgPage::rectangle(Point corner, double width, double height, const std::string& fill,
                        const std::string& stroke) {
    body_ << "<rect x=\"" << corner.x << "\" y=\"" << corner.y << "\" width=\"" << width << "\" height=\""
          << height << "\" fill=\"" << fill << "\" stroke=\"" << stroke << "\"/>\n";
}

void SvgPage::line(Point from, Point to, const std::string& stroke) {
    body_ << "<line x1=\"" << from.x << "\" y1=\"" << from.y << "\" x2=\"" << to.x << "\" y2=\"" << to.y
          << "\" stroke=\"" << stroke << "\"/>\n";
}

void SvgPage::trace(const std::vector<Point>& points, const std::string& stroke, double width) {
    body_ << "<polyline fill=\"none\" stroke=\"" << stroke << "\" stroke-width=\"" << width
          << "\" stroke-linejoin=\"round\" points=\"";
    put(body_, points);
    body_ << "\"/>\n";
}

void SvgPage::area(const std::vector<Point>& points, const std::string& fill) {
    body_ << "<polygon fill=\"" << fill << "\" points=\"";
    put(body_, points);
    body_ << "\"/>\n";
}

void SvgPage::text(Point at, const std::string& words, const std::string& anchor, int size,
                   const std::string& fill) {
    body_ << "<text x=\"" << at.x << "\" y=\"" << at.y << "\" text-anchor=\"" << anchor << "\" font-size=\""
          << size << "\" fill=\"" << fill << "\">" << escaped(words) << "</text>\n";
}

std::string SvgPage::finish() const {
    const std::string size =
        "width=\"" + std::to_string(width_) + "\" height=\"" + std::to_string(height_) + "\"";
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" " + size + " viewBox=\"0 0 " + std::to_string(width_) +
           " " + std::to_string(height_) + "\" font-family=\"Helvetica, Arial, sans-serif\">\n<rect " + size +
           " fill=\"#ffffff\"/>\n" + body_.str() + "</svg>\n";
}

}  // namespace tvk::picture
