// SPDX-License-Identifier: MIT
// The elements of a matrix, a row of their walk at a time.
#pragma once

#include "matrix.h"
#include "pixelwalk.h"

#include <algorithm>
#include <cstddef>

/// Cuts the elements of a matrix into the rows of the walk over a frame. Within such a row the elements lie
/// one after the other, and so do their pixels in the frame, stepX() bytes apart. What takes a row at a time
/// needs no look at each element, and reaches the same elements as a visitor with a PixelWalk of its own.
class WalkedRows final
{
public:
    /// The matrix and the layout are borrowed.
    WalkedRows(Matrix<unsigned int> *matrix, const PlaneLayout &layout, int frameWidth)
        : walk(layout, frameWidth)
        , first(matrix->begin())
        , end(matrix->end())
    {
    }

    bool atEnd() const { return first == end; }
    bool isAt(int y) const { return !atEnd() && walk.y() == y; }

    /// The elements of this row: the first of them, and how many there are.
    unsigned int *elements() const { return first; }
    int count() const { return static_cast<int>(std::min<std::ptrdiff_t>(walk.placesInRow(), end - first)); }

    /// Image coordinates of the first element, and the step to the next.
    int x() const { return walk.x(); }
    int y() const { return walk.y(); }
    int stepX() const { return walk.stepX(); }

    void next()
    {
        first += count();
        walk.nextRow();
    }

private:
    PixelWalk walk;
    unsigned int *first;
    unsigned int *end;
};
