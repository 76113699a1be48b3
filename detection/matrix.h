// SPDX-License-Identifier: MIT
// The two-dimensional array of sums in which a series of frames is averaged.
#pragma once

#include "largepages.h"

#include <cstdint>
#include <memory>
#include <new>
#include <stdexcept>
#include <type_traits>

/// Columns times rows of T, not initialised at first. Elements are addressed by (x, y).
template<typename T>
class Matrix final
{
public:
    /// A visitor of all elements.
    class Iterator
    {
    public:
        virtual ~Iterator() = default;
        virtual void operator()(T &value) = 0;
    };

    class out_of_range final : public std::out_of_range
    {
    public:
        // Kept: the text names the parameters in the other order.
        out_of_range()
            : std::out_of_range("Matrix<T>::operator() (unsigned posY, unsigned poX) out of range")
        {
        }
    };

    /// @throws std::length_error "Matrix has no size" when a side is 0, std::bad_alloc when it is too large
    Matrix(unsigned rows, unsigned cols)
        : width(cols)
        , height(rows)
        , data(allocate(rows, cols))
    {
    }
    Matrix(const Matrix &) = delete;
    Matrix &operator=(const Matrix &) = delete;

    /// The element in column x of row y. @throws out_of_range
    T &operator()(unsigned x, unsigned y)
    {
        checkRange(x, y);
        return data[offset(x, y)];
    }
    const T &operator()(unsigned x, unsigned y) const
    {
        checkRange(x, y);
        return data[offset(x, y)];
    }

    /// Visits the elements row by row, each row from the left.
    void forEach(Iterator &it)
    {
        for (unsigned y = 0; y < height; ++y) {
            for (unsigned x = 0; x < width; ++x)
                it((*this)(x, y));
        }
    }

    /// The same for a visitor of a final class, whose operation needs no virtual call: the compiler sees all
    /// of the loop.
    template<typename Visitor>
    std::enable_if_t<std::is_final<Visitor>::value> forEach(Visitor &it)
    {
        for (T &value : *this)
            it(value);
    }

    /// The elements in the order of forEach(): they lie one after the other.
    T *begin() { return data.get(); }
    T *end() { return data.get() + static_cast<std::size_t>(width) * height; }

private:
    static constexpr std::uint64_t TooManyElements = std::uint64_t(1) << 30;

    static T *allocate(unsigned rows, unsigned cols)
    {
        if (rows == 0 || cols == 0)
            throw std::length_error("Matrix has no size");
        const std::uint64_t count = std::uint64_t(rows) * cols;
        if (count >= TooManyElements)
            throw std::bad_alloc();
        T *elements = new T[static_cast<std::size_t>(count)];
        askForLargePages(elements, static_cast<std::size_t>(count) * sizeof(T));
        return elements;
    }

    void checkRange(unsigned x, unsigned y) const
    {
        if (y >= height || x >= width)
            throw out_of_range();
    }

    std::size_t offset(unsigned x, unsigned y) const { return x + static_cast<std::size_t>(width) * y; }

    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::unique_ptr<T[]> data;
};
