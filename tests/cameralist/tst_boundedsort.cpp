// SPDX-License-Identifier: MIT
// Tests the sort that must stay inside its array whatever the comparison says.
#include "boundedsort.h"

#include <QtTest>

#include <algorithm>
#include <functional>
#include <numeric>
#include <random>
#include <stdexcept>
#include <vector>

namespace {

std::vector<int> shuffled(int count, unsigned seed)
{
    std::vector<int> items(static_cast<std::size_t>(count));
    std::iota(items.begin(), items.end(), 0);
    std::mt19937 random(seed);
    std::shuffle(items.begin(), items.end(), random);
    return items;
}

bool holdsAllOf(std::vector<int> items, int count)
{
    std::sort(items.begin(), items.end());
    return items == [count] {
        std::vector<int> all(static_cast<std::size_t>(count));
        std::iota(all.begin(), all.end(), 0);
        return all;
    }();
}

} // namespace

class TestBoundedSort : public QObject
{
    Q_OBJECT

private slots:
    void sortsListsOfAnyLength();
    void keepsEqualItemsInTheirOrder();
    void fewAreInTheOrderOfTheStandardSort();
    void keepsEveryItemUnderASenselessComparison();
    void leavesTheItemsAloneWhenTheComparisonThrows();
    void oneItemIsNotCompared();
};

void TestBoundedSort::sortsListsOfAnyLength()
{
    for (int count = 0; count < 70; ++count) {
        std::vector<int> items = shuffled(count, static_cast<unsigned>(count));
        boundedSort(items, std::less<int>());
        QVERIFY(std::is_sorted(items.begin(), items.end()));
        QVERIFY(holdsAllOf(items, count));
    }
}

void TestBoundedSort::keepsEqualItemsInTheirOrder()
{
    std::vector<int> items = shuffled(200, 1);
    std::vector<int> expected = items;
    const auto byTens = [](int a, int b) { return a / 10 < b / 10; };
    std::stable_sort(expected.begin(), expected.end(), byTens);
    boundedSort(items, byTens);
    QCOMPARE(items, expected);
}

/// Also where the comparison is no ordering, which so few do not lead out of the array.
void TestBoundedSort::fewAreInTheOrderOfTheStandardSort()
{
    const auto mixed = [](int a, int b) { return a % 7 < b % 5; };
    for (unsigned seed = 0; seed < 200; ++seed) {
        std::vector<int> items = shuffled(static_cast<int>(seed % 17), seed);
        std::vector<int> expected = items;
        std::sort(expected.begin(), expected.end(), mixed);
        boundedSort(items, mixed);
        QCOMPARE(items, expected);
    }
}

void TestBoundedSort::keepsEveryItemUnderASenselessComparison()
{
    for (unsigned seed = 0; seed < 50; ++seed) {
        std::mt19937 random(seed);
        std::vector<int> items = shuffled(200, seed);
        boundedSort(items, [&random](int, int) { return random() % 2 == 0; });
        QVERIFY(holdsAllOf(items, 200));
    }
    for (const bool answer : {false, true}) {
        std::vector<int> items = shuffled(200, 3);
        boundedSort(items, [answer](int, int) { return answer; });
        QVERIFY(holdsAllOf(items, 200));
    }
}

void TestBoundedSort::leavesTheItemsAloneWhenTheComparisonThrows()
{
    for (int calls = 0; calls < 1000; calls += 37) {
        std::vector<int> items = shuffled(200, 2);
        const std::vector<int> before = items;
        int left = calls;
        const auto failing = [&left](int a, int b) {
            if (left-- == 0) {
                throw std::runtime_error("enough");
            }
            return a < b;
        };
        QVERIFY_EXCEPTION_THROWN(boundedSort(items, failing), std::runtime_error);
        QCOMPARE(items, before);
    }
}

void TestBoundedSort::oneItemIsNotCompared()
{
    std::vector<int> items{5};
    boundedSort(items, [](int, int) -> bool { throw std::runtime_error("compared"); });
    QCOMPARE(items, std::vector<int>{5});
}

QTEST_GUILESS_MAIN(TestBoundedSort)
#include "tst_boundedsort.moc"
