// SPDX-License-Identifier: MIT
// Tests of the array in which frames are averaged.
#include "matrix.h"

#include <QtTest>

#include <new>
#include <stdexcept>
#include <type_traits>
#include <vector>

using Sums = Matrix<unsigned int>;

namespace {

/// Numbers the elements in the order in which it visits them.
class Counter final : public Sums::Iterator
{
public:
    void operator()(unsigned int &value) override { value = visited++; }

    unsigned int visited = 0;
};

/// Not final, so its operation is called as a virtual one.
class Adder : public Sums::Iterator
{
public:
    void operator()(unsigned int &value) override { sum += value; }

    unsigned int sum = 0;
};

class Stopper final : public Sums::Iterator
{
public:
    void operator()(unsigned int &) override
    {
        if (++visited == 3)
            throw std::runtime_error("enough");
    }

    int visited = 0;
};

QByteArray outOfRangeText(Sums &matrix, unsigned x, unsigned y)
{
    try {
        matrix(x, y);
    } catch (const Sums::out_of_range &failure) {
        return failure.what();
    }
    return "in range";
}

} // namespace

class TestMatrix : public QObject
{
    Q_OBJECT

private slots:
    void withoutRowsOrColumnsItHasNoSize();
    void elementsOutsideAreOutOfRange();
    void theOutOfRangeTextNamesTheArgumentsTheOtherWayRound();
    void constAccessIsCheckedToo();
    void forEachVisitsRowByRow();
    void visitorsOfAFinalClassAndOthersSeeTheSame();
    void elementsLieInTheOrderOfTheVisit();
    void aLargeMatrixHoldsEveryElement();
    void whatAVisitorThrowsPasses();
    void tooManyElementsFailLikeAnyAllocation_data();
    void tooManyElementsFailLikeAnyAllocation();
    void isNeitherCopiedNorAssigned();
};

void TestMatrix::withoutRowsOrColumnsItHasNoSize()
{
    for (const auto &size : {std::pair<unsigned, unsigned>{0, 5}, {5, 0}, {0, 0}}) {
        QByteArray text;
        try {
            const Sums matrix(size.first, size.second);
        } catch (const std::length_error &failure) {
            text = failure.what();
        }
        QCOMPARE(text, QByteArray("Matrix has no size"));
    }
}

void TestMatrix::elementsOutsideAreOutOfRange()
{
    Sums matrix(2, 3);
    matrix(2, 1) = 17;
    QCOMPARE(matrix(2, 1), 17u);
    QVERIFY_EXCEPTION_THROWN(matrix(3, 0), Sums::out_of_range);
    QVERIFY_EXCEPTION_THROWN(matrix(0, 2), Sums::out_of_range);
    QVERIFY_EXCEPTION_THROWN(matrix(0xffffffffu, 0), Sums::out_of_range);
}

void TestMatrix::theOutOfRangeTextNamesTheArgumentsTheOtherWayRound()
{
    Sums matrix(2, 3);
    const QByteArray text = "Matrix<T>::operator() (unsigned posY, unsigned poX) out of range";
    QCOMPARE(outOfRangeText(matrix, 3, 0), text);
    QCOMPARE(outOfRangeText(matrix, 0, 2), text);
    QVERIFY((std::is_base_of<std::out_of_range, Sums::out_of_range>::value));
}

void TestMatrix::constAccessIsCheckedToo()
{
    Sums matrix(2, 3);
    matrix(0, 1) = 5;
    const Sums &readOnly = matrix;
    QCOMPARE(readOnly(0, 1), 5u);
    QVERIFY_EXCEPTION_THROWN(readOnly(0, 2), Sums::out_of_range);
}

void TestMatrix::forEachVisitsRowByRow()
{
    Sums matrix(2, 3);
    Counter counter;
    matrix.forEach(counter);
    QCOMPARE(counter.visited, 6u);
    QCOMPARE(matrix(0, 0), 0u);
    QCOMPARE(matrix(1, 0), 1u);
    QCOMPARE(matrix(2, 0), 2u);
    QCOMPARE(matrix(0, 1), 3u);
    QCOMPARE(matrix(1, 1), 4u);
    QCOMPARE(matrix(2, 1), 5u);
}

void TestMatrix::visitorsOfAFinalClassAndOthersSeeTheSame()
{
    Sums matrix(2, 3);
    Counter counter;
    matrix.forEach(counter);
    Adder adder;
    matrix.forEach(adder);
    matrix.forEach(static_cast<Sums::Iterator &>(counter));
    QCOMPARE(adder.sum, 0u + 1 + 2 + 3 + 4 + 5);
    QCOMPARE(std::vector<unsigned>(matrix.begin(), matrix.end()),
             (std::vector<unsigned>{6, 7, 8, 9, 10, 11}));
}

void TestMatrix::elementsLieInTheOrderOfTheVisit()
{
    Sums matrix(2, 3);
    Counter counter;
    matrix.forEach(static_cast<Sums::Iterator &>(counter));
    QCOMPARE(std::vector<unsigned>(matrix.begin(), matrix.end()), (std::vector<unsigned>{0, 1, 2, 3, 4, 5}));
}

void TestMatrix::aLargeMatrixHoldsEveryElement()
{
    Sums matrix(1031, 2053); // 8 MB and a bit, no whole number of pages
    Counter counter;
    matrix.forEach(counter);
    QCOMPARE(counter.visited, 1031u * 2053u);
    for (unsigned y = 0; y < 1031; ++y)
        QCOMPARE(matrix(2052, y), 2053 * y + 2052);
}

void TestMatrix::whatAVisitorThrowsPasses()
{
    Sums matrix(2, 3);
    Stopper stopper;
    QVERIFY_EXCEPTION_THROWN(matrix.forEach(stopper), std::runtime_error);
    QCOMPARE(stopper.visited, 3);
}

void TestMatrix::tooManyElementsFailLikeAnyAllocation_data()
{
    QTest::addColumn<uint>("rows");
    QTest::addColumn<uint>("columns");
    QTest::newRow("2^30") << (1u << 15) << (1u << 15);
    QTest::newRow("2^32") << (1u << 16) << (1u << 16); // 0 in 32 bits
    QTest::newRow("most") << 0xffffffffu << 0xffffffffu;
}

void TestMatrix::tooManyElementsFailLikeAnyAllocation()
{
    QFETCH(uint, rows);
    QFETCH(uint, columns);
    QVERIFY_EXCEPTION_THROWN(Sums(rows, columns), std::bad_alloc);
}

void TestMatrix::isNeitherCopiedNorAssigned()
{
    QVERIFY(!std::is_copy_constructible<Sums>::value);
    QVERIFY(!std::is_copy_assignable<Sums>::value);
}

QTEST_APPLESS_MAIN(TestMatrix)
#include "tst_matrix.moc"
