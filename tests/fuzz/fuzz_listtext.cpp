// SPDX-License-Identifier: MIT
// Imports whatever the fuzzer comes up with as the text of a hot pixel list.

#include "badpixellistfile.h"
#include "fuzztarget.h"

#include <QBuffer>
#include <QRegularExpression>
#include <QTextStream>

#include <algorithm>
#include <tuple>

namespace {

using Entries = std::vector<Badpixel>;

bool isSame(const Badpixel &a, const Badpixel &b)
{
    return std::tie(a.x, a.y, a.pixelclass) == std::tie(b.x, b.y, b.pixelclass);
}

bool areSame(const Entries &some, const Entries &others)
{
    return std::equal(some.begin(), some.end(), others.begin(), others.end(), isSame);
}

/// A text as a file is read.
class Text
{
public:
    explicit Text(const QByteArray &bytes)
        : content(bytes)
    {
        buffer.open(QIODevice::ReadOnly | QIODevice::Text);
    }

    QTextStream &stream() { return text; }

private:
    QByteArray content;
    QBuffer buffer{&content};
    QTextStream text{&buffer};
};

QStringList linesOf(const QByteArray &bytes)
{
    Text text(bytes);
    QStringList lines;
    while (!text.stream().atEnd())
        lines += text.stream().readLine();
    return lines;
}

/// What a stream makes of one line, whatever the lines before were like.
Badpixel entryOf(QString line)
{
    QTextStream numbers(&line);
    int x = -1;
    int y = -1;
    int pixelclass = -1;
    numbers >> x >> y >> pixelclass;
    return {static_cast<std::uint16_t>(x), static_cast<std::uint16_t>(y),
            static_cast<std::uint8_t>(pixelclass)};
}

/// Without a stream: three decimal numbers are themselves, as far as their fields are wide.
void requireDecimal(const Badpixel &entry, const QString &line)
{
    static const QRegularExpression decimal("^([1-9][0-9]{0,8}) ([1-9][0-9]{0,8}) ([1-9][0-9]{0,8})$");
    const QRegularExpressionMatch match = decimal.match(line);
    if (!match.hasMatch())
        return;
    require(entry.x == match.captured(1).toInt() % 65536, "x is what the line says");
    require(entry.y == match.captured(2).toInt() % 65536, "y is what the line says");
    require(entry.pixelclass == match.captured(3).toInt() % 256, "the class is what the line says");
}

void requireAnEntryALine(const Entries &entries, const QStringList &lines)
{
    require(static_cast<int>(entries.size()) == lines.size(), "every line is an entry");
    for (int i = 0; i < lines.size(); ++i) {
        const Badpixel &entry = entries[static_cast<std::size_t>(i)];
        require(isSame(entry, entryOf(lines[i])), "an entry is what its line says alone");
        requireDecimal(entry, lines[i]);
    }
}

/// Without a stream too; only plain characters mean the same in every encoding.
void requireLineCount(const Entries &entries, const QByteArray &input)
{
    const bool isPlain = std::all_of(input.begin(), input.end(), [](signed char c) { return c > 0; });
    const bool isLastOpen = !input.isEmpty() && !input.endsWith('\n') && !input.endsWith('\r');
    if (isPlain && (isLastOpen || input.endsWith('\n') || input.isEmpty()))
        require(static_cast<int>(entries.size()) == input.count('\n') + isLastOpen,
                "lines end at line feeds");
}

void requireRoundTrip(const Entries &entries)
{
    QByteArray expected;
    Entries wanted;
    for (const Badpixel &entry : entries) {
        expected += QByteArray::number(entry.x) + ' ' + QByteArray::number(entry.y) + " 1\n";
        wanted.push_back({entry.x, entry.y, User});
    }
    QByteArray written;
    QTextStream out(&written);
    writeEntries(out, entries);
    out.flush();
    require(written == expected, "entries are written one a line, as the user's own");
    Text text(written);
    require(areSame(readEntries(text.stream()), wanted), "entries that are written are read again");
}

} // namespace

QByteArray outcomeOf(const QByteArray &input)
{
    Text text(input);
    const Entries entries = readEntries(text.stream());
    requireAnEntryALine(entries, linesOf(input));
    requireLineCount(entries, input);
    requireRoundTrip(entries);
    return entries.empty() ? "none" : "entries";
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    outcomeOf(bytesOf(data, size));
    return 0;
}
