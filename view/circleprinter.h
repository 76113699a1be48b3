// SPDX-License-Identifier: MIT
// Prints many circles that look as if a painter had drawn each.
#pragma once

#include "sampling.h"

#include <QColor>
#include <QPoint>

#include <memory>
#include <vector>

class CircleStamp;

/// Antialiased circles of one kind in a scaled picture, bit for bit as if QPainter had drawn them one after
/// the other in the unscaled one, at a small part of the cost. The circles to print are kept in order of
/// their rows, so that the picture is walked once, however the circles are strewn. GUI thread only.
class CirclePrinter final
{
public:
    /// In image pixels.
    CirclePrinter(int radius, int penWidth);
    ~CirclePrinter();

    /// Puts a circle on top of those before. The centre, in image pixels, has no negative coordinate; the
    /// colour's channels are either 0 or 255.
    void add(const QPoint &centre, QRgb colour);

    /// Prints what was added, as far as it lies in the picture, and forgets it.
    void print(ScaledPicture &picture);

private:
    struct Circle
    {
        QPoint centre;
        QRgb colour;
    };

    using Band = std::vector<Circle>; // the circles that reach into it, in the order of adding

    const CircleStamp &stampFor(const QPoint &centre);

    int radius;
    int penWidth;
    int reach;                                        // no pixel of a circle is further from the centre
    std::vector<Band> bands;                          // from the top
    std::vector<std::unique_ptr<CircleStamp>> stamps; // made when first needed
};
