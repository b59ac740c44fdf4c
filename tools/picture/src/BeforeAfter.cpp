#include "picture/BeforeAfter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "picture/Spectrum.h"
#include "picture/SvgPage.h"

namespace tvk::picture {

namespace {

constexpr int kWidth = 960;
constexpr int kHeight = 720;
constexpr double kCloseSeconds = 0.025;

constexpr const char* kInk = "#333333";
constexpr const char* kGrid = "#e2e2e2";
constexpr const char* kFrame = "#888888";
constexpr const char* kBefore = "#3b76af";
constexpr const char* kAfter = "#d1622b";

// A frame with its two axes; x and y give the pixel of a value.
struct Panel {
    double left, top, width, height;
    double xLow, xHigh;
    double yLow, yHigh;
    bool isLogarithmic = false;

    double x(double value) const {
        const double share =
            isLogarithmic ? std::log(value / xLow) / std::log(xHigh / xLow) : (value - xLow) / (xHigh - xLow);
        return left + width * share;
    }
    double y(double value) const {
        return top + height * (yHigh - std::clamp(value, yLow, yHigh)) / (yHigh - yLow);
    }
};

std::string number(double value, int decimals) {
    std::array<char, 32> text;
    std::snprintf(text.data(), text.size(), "%.*f", decimals, value);
    return text.data();
}

// A step of 1, 2 or 5 times a power of ten that gives about as many marks.
double niceStep(double range, int marks) {
    const double raw = range / marks;
    const double decade = std::pow(10.0, std::floor(std::log10(raw)));
    for (const double factor : {1.0, 2.0, 5.0})
        if (factor * decade >= raw) return factor * decade;
    return 10.0 * decade;
}

void drawFrame(SvgPage& page, const Panel& panel, const std::string& title, const char* color) {
    page.rectangle({panel.left, panel.top}, panel.width, panel.height, "none", kFrame);
    page.text({panel.left, panel.top - 7}, title, "start", 13, color);
}

void markX(SvgPage& page, const Panel& panel, double value, const std::string& label) {
    const double bottom = panel.top + panel.height;
    page.line({panel.x(value), panel.top}, {panel.x(value), bottom}, kGrid);
    page.text({panel.x(value), bottom + 15}, label, "middle", 11, kInk);
}

void markY(SvgPage& page, const Panel& panel, double value, const std::string& label) {
    page.line({panel.left, panel.y(value)}, {panel.left + panel.width, panel.y(value)}, kGrid);
    page.text({panel.left - 6, panel.y(value) + 4}, label, "end", 11, kInk);
}

// Marks from the panel's start on, in seconds or, over short ranges, in milliseconds.
void markTime(SvgPage& page, const Panel& panel) {
    const double range = panel.xHigh - panel.xLow;
    const bool isShort = range < 0.5;
    const double step = niceStep(range, 6);
    for (int mark = 0; mark * step <= range * 1.001; ++mark) {
        const double t = mark * step;
        markX(page, panel, panel.xLow + t,
              isShort ? number(t * 1e3, 0) + " ms" : number(t, step < 1.0 ? 1 : 0) + " s");
    }
}

void markLevel(SvgPage& page, const Panel& panel) {
    for (const double level : {-1.0, 0.0, 1.0})
        markY(page, panel, level * panel.yHigh, number(level * panel.yHigh, 2));
}

// Every column from its lowest to its highest sample, so that no peak is lost.
void drawEnvelope(SvgPage& page, const Panel& panel, const std::vector<float>& samples, int rateHz,
                  const char* color) {
    std::vector<Point> high;
    std::vector<Point> low;
    const double framesPerColumn = (panel.xHigh - panel.xLow) * rateHz / panel.width;
    for (int column = 0; column < static_cast<int>(panel.width); ++column) {
        const auto from = static_cast<std::size_t>(panel.xLow * rateHz + column * framesPerColumn);
        const auto to = std::min(from + static_cast<std::size_t>(std::ceil(framesPerColumn)), samples.size());
        if (from >= to) break;
        const auto [least, most] = std::minmax_element(samples.begin() + static_cast<long>(from),
                                                       samples.begin() + static_cast<long>(to));
        high.push_back({panel.left + column, panel.y(*most) - 0.3});
        low.push_back({panel.left + column, panel.y(*least) + 0.3});
    }
    high.insert(high.end(), low.rbegin(), low.rend());
    page.area(high, color);
}

void drawSamples(SvgPage& page, const Panel& panel, const std::vector<float>& samples, int rateHz,
                 const char* color) {
    std::vector<Point> points;
    const auto from = static_cast<std::size_t>(std::lround(panel.xLow * rateHz));
    const auto to = static_cast<std::size_t>(std::lround(panel.xHigh * rateHz));
    for (std::size_t i = from; i <= to && i < samples.size(); ++i)
        points.push_back({panel.x(static_cast<double>(i) / rateHz), panel.y(samples[i])});
    page.trace(points, color, 1.4);
}

void drawSpectrum(SvgPage& page, const Panel& panel, const Spectrum& spectrum, const char* color) {
    std::vector<Point> points;
    const double ratio = std::pow(panel.xHigh / panel.xLow, 1.0 / panel.width);
    double fromHz = panel.xLow;
    for (int column = 0; column < static_cast<int>(panel.width); ++column, fromHz *= ratio)
        if (const auto db = spectrum.loudestDb(fromHz, fromHz * ratio))
            points.push_back({panel.left + column, panel.y(*db)});
    page.trace(points, color, 1.2);
}

double peakOf(const std::vector<float>& samples) {
    double peak = 0.0;
    for (const float sample : samples)
        peak = std::max(peak, std::abs(static_cast<double>(sample)));
    return peak;
}

// Where the loudest stretch of the length begins.
double loudestSeconds(const std::vector<float>& samples, int rateHz, double lengthSeconds) {
    const auto length = static_cast<std::size_t>(lengthSeconds * rateHz);
    double energy = 0.0;
    double most = 0.0;
    std::size_t found = 0;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        energy += static_cast<double>(samples[i]) * static_cast<double>(samples[i]);
        if (i < length) continue;
        const double leaving = samples[i - length];
        energy -= leaving * leaving;
        if (energy > most) {
            most = energy;
            found = i - length + 1;
        }
    }
    return static_cast<double>(found) / rateHz;
}

void drawWaveRow(SvgPage& page, const Recording& recording, int rateHz, double top, double seconds,
                 double closeFrom, const char* color) {
    const double peak = peakOf(recording.samples);
    // Headroom for the eye; a silent recording still needs an axis.
    const double level = peak > 0.0 ? niceStep(peak, 1) : 1.0;
    const Panel whole{70, top, 540, 130, 0.0, seconds, -level, level};
    const Panel close{680, top, 250, 130, closeFrom, closeFrom + kCloseSeconds, -level, level};
    markTime(page, whole);
    markLevel(page, whole);
    markTime(page, close);
    markLevel(page, close);
    drawEnvelope(page, whole, recording.samples, rateHz, color);
    drawSamples(page, close, recording.samples, rateHz, color);
    drawFrame(page, whole, recording.name + ", peak " + number(peak, 3), color);
    drawFrame(page, close, "the loudest moment, from " + number(closeFrom, 2) + " s", color);
}

void drawSpectra(SvgPage& page, const Recording& before, const Recording& after, int rateHz) {
    const Panel panel{70, 430, 860, 245, 40.0, 20000.0, -110.0, 0.0, true};
    for (const double hz : {50.0, 100.0, 200.0, 500.0})
        markX(page, panel, hz, number(hz, 0) + " Hz");
    for (const double khz : {1.0, 2.0, 5.0, 10.0, 20.0})
        markX(page, panel, khz * 1e3, number(khz, 0) + " kHz");
    for (double db = 0.0; db > panel.yLow; db -= 20.0)
        markY(page, panel, db, number(db, 0) + " dB");
    drawSpectrum(page, panel, Spectrum(before.samples, rateHz), kBefore);
    drawSpectrum(page, panel, Spectrum(after.samples, rateHz), kAfter);
    drawFrame(page, panel, "Average spectrum, dB of a full-scale sine", kInk);
    page.text({panel.left + panel.width - 50, panel.top - 7}, "before", "end", 13, kBefore);
    page.text({panel.left + panel.width, panel.top - 7}, "after", "end", 13, kAfter);
}

}  // namespace

std::string drawBeforeAfter(const Recording& before, const Recording& after, int rateHz) {
    SvgPage page(kWidth, kHeight);
    const double frames = static_cast<double>(std::max(before.samples.size(), after.samples.size()));
    const double seconds = std::max(frames / rateHz, kCloseSeconds);
    const double closeFrom = loudestSeconds(before.samples, rateHz, kCloseSeconds);
    page.text({kWidth / 2.0, 26}, "A guitar before and after the amplifier", "middle", 17, kInk);
    drawWaveRow(page, before, rateHz, 62, seconds, closeFrom, kBefore);
    drawWaveRow(page, after, rateHz, 244, seconds, closeFrom, kAfter);
    drawSpectra(page, before, after, rateHz);
    return page.finish();
}

}  // namespace tvk::picture
