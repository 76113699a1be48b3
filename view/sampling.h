// SPDX-License-Identifier: MIT
// Which pixels of a picture stay when it is scaled to the nearest neighbour, and the scaling itself.
#pragma once

#include <QImage>
#include <QSize>

#include <vector>

/// The pixels of one side of a picture, its columns or its rows, that the side of the scaled picture shows,
/// in rising order.
class SideSampling final
{
public:
    SideSampling() = default;

    /// How Qt::FastTransformation scales `from` pixels to `to`, both at least 1. Sides that are too long for
    /// Qt are scaled in proportion.
    SideSampling(int from, int to);

    /// Pixels of the picture, and of the scaled picture.
    int from() const { return static_cast<int>(first.size()) - 1; }
    int to() const { return static_cast<int>(shown.size()); }

    /// The pixel that the scaled picture shows there.
    int pixel(int place) const { return shown[static_cast<std::size_t>(place)]; }

    /// All of them, by place.
    const int *pixels() const { return shown.data(); }

    /// The places that show a pixel begin at its own begin() and end before its end().
    int begin(int pixel) const { return first[static_cast<std::size_t>(pixel)]; }
    int end(int pixel) const { return first[static_cast<std::size_t>(pixel) + 1]; }

private:
    std::vector<int> shown;    // by place
    std::vector<int> first{0}; // by pixel: the first place that shows it or a later one; one more at the end
};

/// The same for both sides of a picture; for one that is not scaled it takes everything.
struct Sampling
{
    Sampling() = default;
    Sampling(const QSize &from, const QSize &to);

    QSize from() const { return QSize(columns.from(), rows.from()); }
    QSize to() const { return QSize(columns.to(), rows.to()); }

    SideSampling columns;
    SideSampling rows;
};

/// Copies a frame that borrows the camera's buffer into `kept`, whose memory serves again for a frame like
/// the last one. QImage::Format_RGB32 and QImage::Format_Indexed8 without colour table, which is shown grey,
/// stay what they are; others are converted to QImage::Format_RGB32.
void keepFrame(QImage &kept, const QImage &frame);

/// Scales a frame that was kept so into another, which must be a QImage::Format_RGB32 of the sampling's size.
void scaleInto(QImage &scaled, const QImage &picture, const Sampling &sampling);

/// A scaled picture whose memory serves for the next one, too.
struct ScaledPicture
{
    /// Makes pixels and sampling ready for this scaling; neither size is empty. Pixels that somebody else
    /// shows are left to them. @return false when there is no memory for it; pixels is null then
    bool makeRoom(const QSize &from, const QSize &to);

    QImage pixels; // QImage::Format_RGB32
    Sampling sampling;
};
