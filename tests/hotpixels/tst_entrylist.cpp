// SPDX-License-Identifier: MIT
// Tests that the list of entries keeps what a plain vector keeps, wherever it is changed.
#include "entrylist.h"

#include <QtTest>

#include <random>

namespace {

bool isSame(const Badpixel &a, const Badpixel &b)
{
    return a.x == b.x && a.y == b.y && a.pixelclass == b.pixelclass;
}

bool isSame(const EntryList &list, const std::vector<Badpixel> &rows)
{
    bool same = list.size() == rows.size() && list.empty() == rows.empty();
    for (std::size_t row = 0; same && row < rows.size(); ++row) {
        same = isSame(list[row], rows[row]);
    }
    return same;
}

Badpixel entry(int number)
{
    return {static_cast<std::uint16_t>(number), static_cast<std::uint16_t>(number / 7),
            static_cast<std::uint8_t>(number % 3)};
}

std::vector<Badpixel> entries(int count)
{
    std::vector<Badpixel> list;
    for (int i = 0; i < count; ++i) {
        list.push_back(entry(i));
    }
    return list;
}

} // namespace

class TestEntryList : public QObject
{
    Q_OBJECT

private slots:
    void isEmptyAtFirst();
    void removingEverySecondRowKeepsTheOthers();
    void aRowThatWasChangedReadsChanged();
    void joinedRowsAreInListOrder();
    void rowsPutInAnotherOrderStayInIt();
    void aClearedListTakesEntriesAgain();
    void agreesWithAVectorWhateverIsDone_data();
    void agreesWithAVectorWhateverIsDone();
};

void TestEntryList::isEmptyAtFirst()
{
    EntryList list;
    QVERIFY(list.empty());
    QVERIFY(list.joined().empty());
    list.append(std::vector<Badpixel>());
    QVERIFY(list.empty());
}

void TestEntryList::removingEverySecondRowKeepsTheOthers()
{
    EntryList list;
    std::vector<Badpixel> rows = entries(9);
    list.append(rows);
    for (std::size_t row = 0; row < rows.size(); ++row) {
        list.erase(row, 1);
        rows.erase(rows.begin() + static_cast<std::ptrdiff_t>(row));
        QVERIFY(isSame(list, rows));
    }
}

void TestEntryList::aRowThatWasChangedReadsChanged()
{
    EntryList list;
    list.append(entries(6));
    list.erase(2, 1);
    list[1].x = 100; // before the place of the last change, and behind it
    list[4].x = 200;
    QCOMPARE(list[1].x, std::uint16_t(100));
    QCOMPARE(list[4].x, std::uint16_t(200));
    QCOMPARE(list.joined()[4].x, std::uint16_t(200));
}

void TestEntryList::joinedRowsAreInListOrder()
{
    EntryList list;
    std::vector<Badpixel> rows = entries(8);
    list.append(rows);
    list.erase(3, 2);
    rows.erase(rows.begin() + 3, rows.begin() + 5);
    const EntryList &read = list;
    QCOMPARE(read.joined().size(), rows.size());
    for (std::size_t row = 0; row < rows.size(); ++row) {
        QVERIFY(isSame(read.joined()[row], rows[row]));
    }
}

void TestEntryList::rowsPutInAnotherOrderStayInIt()
{
    EntryList list;
    std::vector<Badpixel> rows = entries(5);
    list.append(rows);
    list.insert(2, 1, entry(50));
    rows.insert(rows.begin() + 2, entry(50));
    std::reverse(list.joined().begin(), list.joined().end());
    std::reverse(rows.begin(), rows.end());
    QVERIFY(isSame(list, rows));
}

void TestEntryList::aClearedListTakesEntriesAgain()
{
    EntryList list;
    list.append(entries(5));
    list.erase(1, 1);
    list.clear();
    QVERIFY(list.empty());
    list.append(entry(7));
    QVERIFY(isSame(list, {entry(7)}));
}

void TestEntryList::agreesWithAVectorWhateverIsDone_data()
{
    QTest::addColumn<int>("seed");
    for (int seed = 0; seed < 20; ++seed) {
        QTest::addRow("seed %d", seed) << seed;
    }
}

void TestEntryList::agreesWithAVectorWhateverIsDone()
{
    QFETCH(int, seed);
    std::mt19937 random(static_cast<unsigned>(seed));
    EntryList list;
    std::vector<Badpixel> rows;
    for (int step = 0; step < 2000; ++step) {
        const std::size_t row = random() % (rows.size() + 1);
        const auto at = rows.begin() + static_cast<std::ptrdiff_t>(row);
        const std::size_t count = std::min<std::size_t>(random() % 4, rows.size() - row);
        switch (random() % 5) {
        case 0:
            list.append(entry(step));
            rows.push_back(entry(step));
            break;
        case 1:
            list.insert(row, count, entry(step));
            rows.insert(at, count, entry(step));
            break;
        case 2:
            list.erase(row, count);
            rows.erase(at, at + static_cast<std::ptrdiff_t>(count));
            break;
        case 3:
            QCOMPARE(list.joined().size(), rows.size());
            break;
        default: {
            const std::vector<Badpixel> more = entries(static_cast<int>(random() % 3));
            list.append(more);
            rows.insert(rows.end(), more.begin(), more.end());
        }
        }
        QVERIFY(isSame(list, rows));
    }
}

QTEST_APPLESS_MAIN(TestEntryList)
#include "tst_entrylist.moc"
