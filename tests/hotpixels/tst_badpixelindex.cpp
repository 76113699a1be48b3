// SPDX-License-Identifier: MIT
// Tests that the index finds what a walk through the list would find.
#include "badpixelindex.h"

#include <QtTest>

class TestBadpixelIndex : public QObject
{
    Q_OBJECT

private slots:
    void knowsNothingAtFirst();
    void findsTheFirstOfSeveralRows();
    void followsAGrowingList();
    void findsMovedRowsOnceToldToForget();
    void ignoredPlacesAreNotTaken();
    void takenPlacesStayTakenByLaterRows();
    void keepsCoordinatesApart();
};

void TestBadpixelIndex::knowsNothingAtFirst()
{
    BadpixelIndex index;
    index.follow({});
    QCOMPARE(index.firstRow(0, 0), -1);
    QVERIFY(!index.isTaken(0, 0));
}

void TestBadpixelIndex::findsTheFirstOfSeveralRows()
{
    BadpixelIndex index;
    index.follow({{1, 1, User}, {2, 2, User}, {2, 2, User}, {1, 1, Factory}});
    QCOMPARE(index.firstRow(1, 1), 0);
    QCOMPARE(index.firstRow(2, 2), 1);
}

void TestBadpixelIndex::followsAGrowingList()
{
    BadpixelIndex index;
    std::vector<Badpixel> entries{{1, 1, User}};
    index.follow(entries);
    entries.push_back({3, 4, User});
    index.follow(entries);
    QCOMPARE(index.firstRow(1, 1), 0);
    QCOMPARE(index.firstRow(3, 4), 1);
}

void TestBadpixelIndex::findsMovedRowsOnceToldToForget()
{
    BadpixelIndex index;
    std::vector<Badpixel> entries{{1, 1, User}, {3, 4, User}};
    index.follow(entries);
    entries.erase(entries.begin());
    index.forget();
    index.follow(entries);
    QCOMPARE(index.firstRow(1, 1), -1);
    QVERIFY(!index.isTaken(1, 1));
    QCOMPARE(index.firstRow(3, 4), 0);
}

void TestBadpixelIndex::ignoredPlacesAreNotTaken()
{
    BadpixelIndex index;
    std::vector<Badpixel> entries{{1, 1, Ignore}, {2, 2, 255}, {3, 3, Factory}, {4, 4, User}};
    index.follow(entries);
    QVERIFY(!index.isTaken(1, 1));
    QVERIFY(!index.isTaken(2, 2));
    QVERIFY(index.isTaken(3, 3));
    QVERIFY(index.isTaken(4, 4));

    entries.push_back({1, 1, User});
    index.follow(entries);
    QVERIFY(index.isTaken(1, 1));
    QCOMPARE(index.firstRow(1, 1), 0);
}

void TestBadpixelIndex::takenPlacesStayTakenByLaterRows()
{
    BadpixelIndex index;
    index.follow({{1, 1, User}, {1, 1, Ignore}});
    QVERIFY(index.isTaken(1, 1));
}

void TestBadpixelIndex::keepsCoordinatesApart()
{
    BadpixelIndex index;
    index.follow({{65535, 0, User}, {0, 65535, User}, {0, 1, User}, {1, 0, User}});
    QCOMPARE(index.firstRow(65535, 0), 0);
    QCOMPARE(index.firstRow(0, 65535), 1);
    QCOMPARE(index.firstRow(0, 1), 2);
    QCOMPARE(index.firstRow(1, 0), 3);
    QCOMPARE(index.firstRow(65535, 65535), -1);
}

QTEST_GUILESS_MAIN(TestBadpixelIndex)
#include "tst_badpixelindex.moc"
