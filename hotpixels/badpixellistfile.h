// SPDX-License-Identifier: MIT
// Hot pixel entries as plain text, one a line: x, y and class in decimal, divided by blanks.
#pragma once

#include "badpixel.h"

#include <vector>

class QTextStream;

/// Reads all lines that are left. Each gives one entry, an empty or malformed one included: numbers are taken
/// as the stream reads them, which is 0 for what is none, and cut to the width of their field.
std::vector<Badpixel> readEntries(QTextStream &text);

/// Writes a line for each entry, all as user entries whatever their class. Ask the stream, after a flush,
/// whether it could be written.
void writeEntries(QTextStream &text, const std::vector<Badpixel> &entries);
