// SPDX-License-Identifier: MIT

#include "savedlayout.h"

#include <QByteArray>
#include <QDataStream>
#include <QString>

namespace {

constexpr qint32 WindowMarker = 0xff;
constexpr quint8 DocksMarker = 0xfd;
constexpr quint8 SequenceMarker = 0xfc;
constexpr quint8 TabsMarker = 0xfa;
constexpr quint8 DockMarker = 0xfb;
constexpr quint8 ToolBarsMarker = 0xfc;

constexpr qint32 LastSide = 3;            // of the window's four, where docks and tool bars are
constexpr qint32 LargestLength = 1 << 28; // in pixels; that of a widget is below 2^24, of several above
constexpr qint32 MostItems = 1000;
constexpr int DeepestNesting = 16;

/// Reads a saved state piece by piece. A piece that is not as it should be, or not there, spoils the rest.
class LayoutReader
{
public:
    explicit LayoutReader(const QByteArray &bytes)
        : stream(bytes)
    {
    }

    bool isLayout()
    {
        expect(number() == WindowMarker);
        number(); // the version, which Qt looks at
        readDocks();
        readToolBars();
        return good && stream.atEnd();
    }

private:
    void expect(bool condition) { good = good && condition && stream.status() == QDataStream::Ok; }

    template<typename Value>
    Value read()
    {
        Value value{};
        stream >> value;
        expect(true);
        return value;
    }

    qint32 number() { return read<qint32>(); }

    qint32 numberWithin(qint32 low, qint32 high)
    {
        const qint32 value = number();
        expect(value >= low && value <= high);
        return value;
    }

    /// Reads that many items with a function, as long as these are as they should be.
    template<typename Read>
    void readItems(qint32 count, Read readItem)
    {
        for (qint32 i = 0; i < count && good; ++i)
            readItem();
    }

    void readLengths(int count)
    {
        readItems(count, [this] { numberWithin(-LargestLength, LargestLength); });
    }

    void readDocks()
    {
        expect(read<quint8>() == DocksMarker);
        qint32 next = 0; // they come in order, each once
        readItems(numberWithin(0, LastSide + 1), [this, &next] {
            next = numberWithin(next, LastSide) + 1;
            readLengths(2);
            readGroup(0);
        });
        readLengths(2); // of the centre
        readItems(4, [this] { readCorner(); });
    }

    void readCorner()
    {
        const qint32 area = number();
        expect(area == Qt::LeftDockWidgetArea || area == Qt::RightDockWidgetArea ||
               area == Qt::TopDockWidgetArea || area == Qt::BottomDockWidgetArea);
    }

    /// Docks side by side, or behind one another.
    void readGroup(int depth)
    {
        const auto marker = read<quint8>();
        expect((marker == SequenceMarker || marker == TabsMarker) && depth < DeepestNesting);
        const qint32 front = marker == TabsMarker ? numberWithin(-1, MostItems) : -1;
        const auto orientation = read<quint8>();
        expect(orientation == Qt::Horizontal || orientation == Qt::Vertical);
        const qint32 count = numberWithin(0, MostItems);
        expect(front < count);
        const bool areTabs = marker == TabsMarker;
        readItems(count, [this, areTabs, depth] { readGroupItem(areTabs, depth); });
    }

    /// A tab is of one dock: those of a group in its place could not be reached.
    void readGroupItem(bool isTab, int depth)
    {
        const auto marker = read<quint8>();
        expect(marker == DockMarker || (marker == SequenceMarker && !isTab));
        if (marker == DockMarker) {
            read<QString>();             // its name
            expect(read<quint8>() <= 3); // shown, floating
        }
        readLengths(4);
        if (marker == SequenceMarker && good)
            readGroup(depth + 1);
    }

    void readToolBars()
    {
        expect(read<quint8>() == ToolBarsMarker);
        readItems(numberWithin(0, MostItems), [this] {
            numberWithin(0, LastSide);
            readItems(numberWithin(0, MostItems), [this] { readToolBar(); });
        });
    }

    void readToolBar()
    {
        read<QString>();             // its name
        expect(read<quint8>() <= 3); // shown, upright
        readLengths(2);
        read<quint64>(); // where it floats, packed
    }

    QDataStream stream;
    bool good = true;
};

} // namespace

bool isSavedLayout(const QByteArray &state)
{
    return LayoutReader(state).isLayout();
}
