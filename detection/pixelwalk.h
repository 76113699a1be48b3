// SPDX-License-Identifier: MIT
// The way in which the detector goes through a frame.
#pragma once

#include <cstdint>

/// Where the pixels of a colour plane lie in the frame: the first one, and the steps to the next column and
/// the next row, in image pixels.
struct PlaneLayout
{
    std::uint8_t startX;
    std::uint8_t startY;
    std::uint8_t stepX;
    std::uint8_t stepY;
};

/// Image coordinates in step with the elements of a matrix: one for each call of advance(), or row by row.
///
/// Kept: a row ends only beyond the frame's width, so x equal to the width is visited too and rows shift
/// against the matrix. Values and positions come from this same walk, so they always belong together.
class PixelWalk final
{
public:
    /// The layout must outlive the walk.
    PixelWalk(const PlaneLayout &planeLayout, int frameWidth)
        : layout(planeLayout)
        , width(frameWidth)
        , column(planeLayout.startX)
        , row(planeLayout.startY)
    {
    }

    int x() const { return column; }
    int y() const { return row; }

    void advance()
    {
        column += layout.stepX;
        if (column > width)
            nextRow();
    }

    /// How many places are left in this row, this one included.
    int placesInRow() const { return (width - column) / layout.stepX + 1; }

    int stepX() const { return layout.stepX; }

    void nextRow()
    {
        column = layout.startX;
        row += layout.stepY;
    }

private:
    const PlaneLayout &layout;
    const int width;
    int column;
    int row;
};
