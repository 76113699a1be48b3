// SPDX-License-Identifier: MIT
// Reads and writes hot pixel entries as plain text.
#include "badpixellistfile.h"

#include <QTextStream>

namespace {

// Kept: nothing is checked, so that every line is an entry. The stream guesses the base of a number (0x10 and
// 010 are not ten), stops at what does not fit, and stores 0 where it finds no number at all.
Badpixel entryIn(QString line)
{
    QTextStream numbers(&line, QIODevice::ReadOnly);
    int x = -1;
    int y = -1;
    int pixelclass = -1;
    numbers >> x >> y >> pixelclass;
    return {static_cast<std::uint16_t>(x), static_cast<std::uint16_t>(y),
            static_cast<std::uint8_t>(pixelclass)};
}

} // namespace

std::vector<Badpixel> readEntries(QTextStream &text)
{
    std::vector<Badpixel> entries;
    while (!text.atEnd()) {
        const QString line = text.readLine();
        // A file that shrinks or fails while it is read promises more and never gives it.
        if (line.isNull() && !text.atEnd()) {
            break;
        }
        entries.push_back(entryIn(line));
    }
    return entries;
}

void writeEntries(QTextStream &text, const std::vector<Badpixel> &entries)
{
    for (const Badpixel &entry : entries) {
        text << entry.x << ' ' << entry.y << ' ' << int(User) << '\n';
    }
}
