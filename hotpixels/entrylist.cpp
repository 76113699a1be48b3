// SPDX-License-Identifier: MIT
// Holds hot pixel entries, split where they were changed last.
#include "entrylist.h"

const Badpixel &EntryList::operator[](std::size_t row) const
{
    return row < front.size() ? front[row] : back[size() - 1 - row];
}

Badpixel &EntryList::operator[](std::size_t row)
{
    return row < front.size() ? front[row] : back[size() - 1 - row];
}

const std::vector<Badpixel> &EntryList::joined() const
{
    splitAt(size());
    return front;
}

std::vector<Badpixel> &EntryList::joined()
{
    splitAt(size());
    return front;
}

void EntryList::append(const Badpixel &entry)
{
    splitAt(size());
    front.push_back(entry);
}

void EntryList::append(const std::vector<Badpixel> &list)
{
    splitAt(size());
    front.insert(front.end(), list.begin(), list.end());
}

void EntryList::insert(std::size_t row, std::size_t count, const Badpixel &entry)
{
    splitAt(row);
    front.insert(front.end(), count, entry);
}

void EntryList::erase(std::size_t row, std::size_t count)
{
    splitAt(row);
    back.resize(back.size() - count);
}

void EntryList::splitAt(std::size_t row) const
{
    if (row < front.size()) {
        const auto moved = static_cast<std::ptrdiff_t>(front.size() - row);
        back.insert(back.end(), front.rbegin(), front.rbegin() + moved);
        front.resize(row);
    } else if (row > front.size()) {
        const auto moved = static_cast<std::ptrdiff_t>(row - front.size());
        front.insert(front.end(), back.rbegin(), back.rbegin() + moved);
        back.resize(back.size() - static_cast<std::size_t>(moved));
    }
}
