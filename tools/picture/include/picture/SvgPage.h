// An SVG page of a few plain shapes. Coordinates are pixels from the upper left corner.
#pragma once

#include <sstream>
#include <string>
#include <vector>

namespace tvk::picture {

struct Point {
    double x;
    double y;
};

class SvgPage {
public:
    SvgPage(int width, int height);

    void rectangle(Point corner, double width, double height, const std::string& fill,
                   const std::string& stroke);
    void line(Point from, Point to, const std::string& stroke);
    // Straight pieces through the points.
    void trace(const std::vector<Point>& points, const std::string& stroke, double width);
    // The closed outline, filled.
    void area(const std::vector<Point>& points, const std::string& fill);
    // anchor: start, middle or end, where the text lies against the point.
    void text(Point at, const std::string& words, const std::string& anchor, int size,
              const std::string& fill);

    // The whole document.
    std::string finish() const;

private:
    std::ostringstream body_;
    int width_;
    int height_;
};

}  // namespace tvk::picture
