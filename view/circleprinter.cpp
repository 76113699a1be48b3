// SPDX-License-Identifier: MIT
// Learns circles from QPainter and repeats them.

#include "circleprinter.h"

#include <QImage>
#include <QPainter>
#include <QPen>
#include <QRect>

#include <algorithm>
#include <array>
#include <cstddef>
#include <numeric>

namespace {

constexpr int Values = 256; // of a colour channel

// Image rows that are printed together; few enough for the processor to keep them at hand.
constexpr int BandRows = 64;

/// The upper left corner of a grey picture with a circle in it, whose red and green channels are on and whose
/// blue one is off.
QImage circleOnGrey(int grey, int radius, int penWidth, const QPoint &centre)
{
    const int margin = radius + penWidth + 1;
    QImage picture(centre.x() + margin, centre.y() + margin, QImage::Format_RGB32);
    picture.fill(qRgb(grey, grey, grey));
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Qt::yellow, penWidth));
    painter.drawEllipse(QRect(centre - QPoint(radius, radius), centre + QPoint(radius, radius)));
    return picture;
}

/// What a circle does to a pixel. Antialiasing mixes each colour channel for itself, and a painter may come
/// by more than once, so what it makes of a pixel is taken down for every value that a channel may have
/// there.
struct Ink
{
    using Channel = std::array<uchar, Values>; // what is drawn, by what was there

    QRgb on(QRgb before, QRgb colour) const
    {
        const Channel &red = drawn[qRed(colour) & 1];
        const Channel &green = drawn[qGreen(colour) & 1];
        const Channel &blue = drawn[qBlue(colour) & 1];
        return qRgb(red[qRed(before)], green[qGreen(before)], blue[qBlue(before)]);
    }

    std::array<Channel, 2> drawn; // in a colour without this channel, and with it
};

/// Taken from drawings on every grey.
Ink inkAt(const QPoint &pixel, const std::vector<QImage> &drawings)
{
    Ink ink;
    for (std::size_t grey = 0; grey < drawings.size(); ++grey) {
        const QRgb drawn = drawings[grey].pixel(pixel);
        ink.drawn[0][grey] = static_cast<uchar>(qBlue(drawn));
        ink.drawn[1][grey] = static_cast<uchar>(qRed(drawn));
    }
    return ink;
}

/// Leaves a pixel as it was.
Ink noInk()
{
    Ink ink;
    for (Ink::Channel &channel : ink.drawn)
        std::iota(channel.begin(), channel.end(), uchar(0));
    return ink;
}

/// A pixel of a circle.
struct Dot
{
    QPoint place;    // seen from the centre
    std::size_t ink; // an index: many pixels have the same
};

/// Some rows of the unscaled picture, in the scaled one.
struct Strip
{
    ScaledPicture &picture;
    int firstRow;
    int endRow;
};

} // namespace

/// A circle as QPainter draws it round one place.
class CircleStamp final
{
public:
    CircleStamp(int radius, int penWidth, const QPoint &centre);

    /// Prints what of the circle lies in the strip.
    void print(const Strip &strip, const QPoint &centre, QRgb colour) const;

private:
    void addDot(const QPoint &place, const Ink &ink);

    std::vector<Dot> dots;
    std::vector<Ink> inks{noInk()}; // all different
};

CircleStamp::CircleStamp(int radius, int penWidth, const QPoint &centre)
{
    std::vector<QImage> drawings;
    drawings.reserve(Values);
    for (int grey = 0; grey < Values; ++grey)
        drawings.push_back(circleOnGrey(grey, radius, penWidth, centre));
    for (int y = 0; y < drawings.front().height(); ++y) {
        for (int x = 0; x < drawings.front().width(); ++x)
            addDot(QPoint(x, y) - centre, inkAt(QPoint(x, y), drawings));
    }
}

void CircleStamp::addDot(const QPoint &place, const Ink &ink)
{
    const auto known =
        std::find_if(inks.begin(), inks.end(), [&ink](const Ink &other) { return other.drawn == ink.drawn; });
    if (known == inks.begin())
        return;
    dots.push_back({place, static_cast<std::size_t>(known - inks.begin())});
    if (known == inks.end())
        inks.push_back(ink);
}

void CircleStamp::print(const Strip &strip, const QPoint &centre, QRgb colour) const
{
    const SideSampling &columns = strip.picture.sampling.columns;
    const SideSampling &rows = strip.picture.sampling.rows;
    uchar *const pixels = strip.picture.pixels.bits();
    const std::ptrdiff_t rowBytes = strip.picture.pixels.bytesPerLine();
    for (const Dot &dot : dots) {
        const QPoint at = centre + dot.place;
        if (at.x() >= columns.from() || at.y() < strip.firstRow || at.y() >= strip.endRow)
            continue;
        for (int y = rows.begin(at.y()); y < rows.end(at.y()); ++y) {
            QRgb *row = reinterpret_cast<QRgb *>(pixels + y * rowBytes);
            for (int x = columns.begin(at.x()); x < columns.end(at.x()); ++x)
                row[x] = inks[dot.ink].on(row[x], colour);
        }
    }
}

CirclePrinter::CirclePrinter(int circleRadius, int circlePenWidth)
    : radius(circleRadius)
    , penWidth(circlePenWidth)
    , reach(circleRadius + circlePenWidth)
    , stamps(static_cast<std::size_t>((reach + 1) * (reach + 1)))
{
}

CirclePrinter::~CirclePrinter() = default;

void CirclePrinter::add(const QPoint &centre, QRgb colour)
{
    const int first = std::max(0, centre.y() - reach) / BandRows;
    const int last = (centre.y() + reach) / BandRows;
    if (static_cast<int>(bands.size()) <= last)
        bands.resize(static_cast<std::size_t>(last) + 1);
    for (int number = first; number <= last; ++number)
        bands[static_cast<std::size_t>(number)].push_back({centre, colour});
}

void CirclePrinter::print(ScaledPicture &picture)
{
    int firstRow = 0;
    for (Band &band : bands) {
        const Strip strip{picture, firstRow, std::min(firstRow + BandRows, picture.sampling.rows.from())};
        for (const Circle &circle : band) {
            if (circle.centre.x() - reach < picture.sampling.columns.from())
                stampFor(circle.centre).print(strip, circle.centre, circle.colour);
        }
        band.clear();
        firstRow += BandRows;
    }
}

/// QPainter rounds circles that the left or upper border cuts otherwise than the rest, so each place there
/// has a stamp of its own. Elsewhere all look the same.
const CircleStamp &CirclePrinter::stampFor(const QPoint &centre)
{
    const QPoint like(std::min(centre.x(), reach), std::min(centre.y(), reach));
    const int place = like.y() * (reach + 1) + like.x();
    std::unique_ptr<CircleStamp> &stamp = stamps[static_cast<std::size_t>(place)];
    if (!stamp)
        stamp = std::make_unique<CircleStamp>(radius, penWidth, like);
    return *stamp;
}
