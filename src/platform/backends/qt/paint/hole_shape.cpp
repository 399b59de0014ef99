#include "platform/backends/qt/paint/hole_shape.h"

#include <QColor>

#include <algorithm>

namespace velmora::platform::qt {

namespace {

struct Run {
    std::int16_t left = 0;
    std::uint16_t width = 0;
    friend bool operator==(const Run &, const Run &) = default;
};

// Alpha is the highest byte, so the greater of two pixels is the less transparent one.
void addRow(const QRgb *row, std::vector<QRgb> &rows) {
    for (std::size_t x = 0; x < rows.size(); ++x)
        rows[x] = std::max(rows[x], row[x]);
}

void findRuns(const std::vector<QRgb> &row, int threshold, int gap, std::vector<Run> &runs) {
    runs.clear();
    const std::size_t width = row.size();
    for (std::size_t x = 0; x < width;) {
        while (x < width && qAlpha(row[x]) < threshold)
            ++x;
        const std::size_t from = x;
        while (x < width && qAlpha(row[x]) >= threshold)
            ++x;
        if (x == from)
            continue;
        const auto before = runs.empty() ? 0 : static_cast<std::size_t>(runs.back().left);
        if (!runs.empty() && from - before - runs.back().width < static_cast<std::size_t>(gap))
            runs.back().width = static_cast<std::uint16_t>(x - before);
        else
            runs.push_back({static_cast<std::int16_t>(from), static_cast<std::uint16_t>(x - from)});
    }
}

} // namespace

std::vector<xcb_rectangle_t> solidRows(const QImage &image, int threshold, int together, int gap) {
    std::vector<xcb_rectangle_t> bands;
    std::vector<Run> before;
    std::vector<Run> runs;
    int top = 0;
    const auto flush = [&](int bottom) {
        for (const Run &run : before)
            bands.push_back({run.left, static_cast<std::int16_t>(top), run.width,
                             static_cast<std::uint16_t>(bottom - top)});
    };
    std::vector<QRgb> rows(static_cast<std::size_t>(image.width()));
    for (int y = 0; y < image.height(); y += together) {
        std::fill(rows.begin(), rows.end(), 0);
        for (int row = y; row < std::min(y + together, image.height()); ++row)
            addRow(reinterpret_cast<const QRgb *>(image.constScanLine(row)), rows);
        findRuns(rows, threshold, gap, runs);
        if (y > 0 && runs == before)
            continue;
        flush(y);
        std::swap(before, runs);
        top = y;
    }
    flush(image.height());
    return bands;
}

void hardenEdges(QImage &image) {
    for (int y = 0; y < image.height(); ++y) {
        auto *row = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const int alpha = qAlpha(row[x]);
            if (alpha == 255 || alpha == 0)
                continue;
            row[x] = alpha < hardThreshold ? 0 : (qUnpremultiply(row[x]) | 0xFF000000U);
        }
    }
}

} // namespace velmora::platform::qt
