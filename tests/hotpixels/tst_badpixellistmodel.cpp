// SPDX-License-Identifier: MIT
// Tests the hot pixel table without a camera: cells, rows, lookup, sorting, announcements.
#include "badpixellistmodel.h"

#include "announcements.h"
#include "badpixellistmodelpeer.h"
#include "modeltext.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QtTest>

#include <algorithm>
#include <limits>
#include <random>
#include <stdexcept>

namespace {

constexpr int fourthColumn = 3;
constexpr int noOrder = 2;

std::vector<Badpixel> sixUserEntries()
{
    return {{0, 10, User}, {1, 11, User}, {2, 12, User}, {3, 13, User}, {4, 14, User}, {5, 15, User}};
}

std::vector<Badpixel> randomEntries(int count)
{
    std::mt19937 random(17);
    std::vector<Badpixel> list;
    for (int i = 0; i < count; ++i) {
        list.push_back({static_cast<std::uint16_t>(random()), static_cast<std::uint16_t>(random()),
                        static_cast<std::uint8_t>(random() % 3)});
    }
    return list;
}

QString sortFailure(BadpixelListModel &model, int column, int order)
{
    try {
        model.sort(column, static_cast<Qt::SortOrder>(order));
    } catch (const std::runtime_error &failure) {
        return QString(failure.what());
    }
    return QString();
}

} // namespace

class TestBadpixelListModel : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { registerLayoutTypes(); }

    void newModelHasThreeColumnsNoRowsAndZeroCounters();
    void classShowsAsText_data();
    void classShowsAsText();
    void coordinatesShowAsInt();
    void cellsOutsideAreInvalid();
    void headersAreShownForTheDisplayRoleOnly();
    void verticalHeaderShowsZeroForTheFirstRow();
    void everyIndexIsSelectableAndEnabledOnly();
    void rowsAreCountedForAnyParent();

    void settingIgnoreAsClassIsRefused();
    void settingFactoryAsClassReadsBackAsIgnore();
    void settingUserAsClass();
    void settingCoordinates();
    void settingTextAsCoordinateIsRefused();
    void settingAnyOtherColumnIsRefused();

    void addingTwiceAtTheSamePlaceAddsOnce();
    void addingAtAFactoryEntryAddsNothing();
    void addingAtAnIgnoredEntryAddsAUserEntry();
    void addingAppendsOneAnnouncedRow();
    void addingIsToldAfterTheRowIsThere();
    void addingCutsCoordinatesTo16Bits();

    void removingAFactoryEntryByHandIsRefused();
    void removingByHandOutsideTheListIsRefused();
    void removingAUserEntryByHand();
    void removingRowsBeyondTheEndRemovesThoseThatAreThere();
    void removingRowsOutsideTheListChangesNothing();
    void insertedRowsAreUserEntriesAtTheOrigin();
    void insertingOrRemovingNoRowsAnnouncesNothing();

    void clearingUserEntriesLeavesTheOthers();
    void clearingUserEntriesAnnouncesRowByRow();
    void clearedRowsAreGoneBetweenTheAnnouncements();
    void clearingAnnouncesAllRowsOnce();
    void clearingAnEmptyListEmitsNothing();

    void sortingByEachColumn_data();
    void sortingByEachColumn();
    void sortingByYDescending();
    void sortingByXIsUnsigned();
    void sortingByClassUsesTheStoredValue();
    void sortingByAFourthColumnThrows();
    void sortingInAnUnknownOrderThrows();
    void sortingAnEmptyListDoesNothing();
    void sortingOneRowComparesNothing();
    void sortingThatThrowsKeepsEveryEntry();
    void sortedRowsAreFoundAndAppendedBehind();

    void findingIsStrictlyInsideTheTolerance();
    void findingTakesTheFirstInListOrder();
    void findingNothing();
    void findingAgreesWithAWalkThroughTheList();
    void longListsKeepEveryEntryFindable();

    void announcementsAreConsistent();
};

void TestBadpixelListModel::newModelHasThreeColumnsNoRowsAndZeroCounters()
{
    const BadpixelListModel model;
    QCOMPARE(model.columnCount(), 3);
    QCOMPARE(model.headerData(0, Qt::Horizontal).toString(), QString("x"));
    QCOMPARE(model.headerData(1, Qt::Horizontal).toString(), QString("y"));
    QCOMPARE(model.headerData(2, Qt::Horizontal).toString(), QString("class"));
    QCOMPARE(model.rowCount(), 0);
    QCOMPARE(model.maximumUserEntries(), 0);
    QCOMPARE(model.factoryEntries(), 0);
}

void TestBadpixelListModel::classShowsAsText_data()
{
    QTest::addColumn<int>("stored");
    QTest::addColumn<QString>("text");
    QTest::newRow("0") << 0 << "ignore";
    QTest::newRow("1") << 1 << "user";
    QTest::newRow("2") << 2 << "factory";
    QTest::newRow("255") << 255 << "factory";
}

void TestBadpixelListModel::classShowsAsText()
{
    QFETCH(int, stored);
    QFETCH(QString, text);
    BadpixelListModel model;
    BadpixelListModelPeer::append(model, {{1, 2, static_cast<std::uint8_t>(stored)}});
    QCOMPARE(model.index(0, 2).data(Qt::DisplayRole), QVariant(text));
    QCOMPARE(model.index(0, 2).data(Qt::EditRole), QVariant(text));
}

void TestBadpixelListModel::coordinatesShowAsInt()
{
    BadpixelListModel model;
    BadpixelListModelPeer::append(model, {{65535, 40000, User}});
    for (const int role : {Qt::DisplayRole, Qt::EditRole}) {
        QCOMPARE(model.index(0, 0).data(role), QVariant(65535));
        QCOMPARE(model.index(0, 1).data(role), QVariant(40000));
        QCOMPARE(model.index(0, 0).data(role).type(), QVariant::Int);
    }
}

void TestBadpixelListModel::cellsOutsideAreInvalid()
{
    BadpixelListModel longer;
    BadpixelListModelPeer::append(longer, sixUserEntries());
    BadpixelListModel model;
    BadpixelListModelPeer::append(model, {{1, 2, User}});
    QVERIFY(model.data(longer.index(0, 0)).isValid());
    QVERIFY(!model.data(longer.index(1, 0)).isValid());
    QVERIFY(!model.data(QModelIndex()).isValid());
    QVERIFY(!model.data(model.index(0, 0), Qt::ToolTipRole).isValid());
    QVERIFY(!model.data(model.index(0, 0), Qt::CheckStateRole).isValid());
}

void TestBadpixelListModel::headersAreShownForTheDisplayRoleOnly()
{
    const BadpixelListModel model;
    QVERIFY(!model.headerData(0, Qt::Horizontal, Qt::EditRole).isValid());
    QVERIFY(!model.headerData(0, Qt::Vertical, Qt::DecorationRole).isValid());
}

void TestBadpixelListModel::verticalHeaderShowsZeroForTheFirstRow()
{
    const BadpixelListModel model;
    QCOMPARE(model.headerData(0, Qt::Vertical), QVariant(0));
    QCOMPARE(model.headerData(41, Qt::Vertical), QVariant(41));
}

void TestBadpixelListModel::everyIndexIsSelectableAndEnabledOnly()
{
    BadpixelListModel model;
    BadpixelListModelPeer::append(model, {{1, 2, User}});
    QCOMPARE(static_cast<int>(model.flags(model.index(0, 2))), 33);
    QCOMPARE(static_cast<int>(model.flags(QModelIndex())), 33);
}

void TestBadpixelListModel::rowsAreCountedForAnyParent()
{
    BadpixelListModel model;
    BadpixelListModelPeer::append(model, sixUserEntries());
    QCOMPARE(model.rowCount(model.index(0, 0)), 6);
    QCOMPARE(model.columnCount(model.index(0, 0)), 3);
}

void TestBadpixelListModel::settingIgnoreAsClassIsRefused()
{
    BadpixelListModel model;
    model.addBadpixel({1, 2});
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    for (const char *const text : {"ignore", "User", "FACTORY", "", "user ", "1"}) {
        QVERIFY2(!model.setData(model.index(0, 2), QString(text)), text);
    }
    QCOMPARE(model.badpixel(0).pixelclass, std::uint8_t(User));
    QCOMPARE(changed.count(), 0);
}

void TestBadpixelListModel::settingFactoryAsClassReadsBackAsIgnore()
{
    BadpixelListModel model;
    model.addBadpixel({1, 2});
    QVERIFY(model.setData(model.index(0, 2), QString("factory")));
    QCOMPARE(model.badpixel(0).pixelclass, std::uint8_t(Factory));
    QCOMPARE(model.index(0, 2).data().toString(), QString("ignore"));
}

void TestBadpixelListModel::settingUserAsClass()
{
    BadpixelListModel model;
    BadpixelListModelPeer::append(model, {{1, 2, Ignore}});
    QVERIFY(model.setData(model.index(0, 2), QString("user")));
    QCOMPARE(model.badpixel(0).pixelclass, std::uint8_t(User));
    QVERIFY(!model.addBadpixel({1, 2}));
}

void TestBadpixelListModel::settingCoordinates()
{
    BadpixelListModel model;
    model.addBadpixel({1, 2});
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    QVERIFY(model.setData(model.index(0, 0), QString("300"), Qt::DisplayRole));
    QVERIFY(model.setData(model.index(0, 1), 65536 + 7, Qt::UserRole));
    QCOMPARE(rowTexts(model), QStringList{"300 7 user"});
    QCOMPARE(changed.count(), 2);
    QCOMPARE(changed.at(1).at(0).toModelIndex(), model.index(0, 1));
    QCOMPARE(changed.at(1).at(1).toModelIndex(), model.index(0, 1));
    QVERIFY(changed.at(1).at(2).value<QVector<int>>().isEmpty());
    QVERIFY(!model.findBadpixel(1, 2, 1).isValid());
    QCOMPARE(model.findBadpixel(300, 7, 1), model.index(0, 0));
}

void TestBadpixelListModel::settingTextAsCoordinateIsRefused()
{
    BadpixelListModel model;
    model.addBadpixel({1, 2});
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    QVERIFY(!model.setData(model.index(0, 0), QString("left")));
    QVERIFY(!model.setData(model.index(0, 1), QVariant()));
    QCOMPARE(rowTexts(model), QStringList{"1 2 user"});
    QCOMPARE(changed.count(), 0);
}

void TestBadpixelListModel::settingAnyOtherColumnIsRefused()
{
    BadpixelListModel model;
    model.addBadpixel({1, 2});
    QVERIFY(!model.setData(QModelIndex(), 5));
    QStandardItemModel wide(1, 4);
    QVERIFY(!model.setData(wide.index(0, fourthColumn), 5));
    QCOMPARE(rowTexts(model), QStringList{"1 2 user"});
}

void TestBadpixelListModel::addingTwiceAtTheSamePlaceAddsOnce()
{
    BadpixelListModel model;
    QSignalSpy added(&model, &BadpixelListModel::pixelAdded);
    QVERIFY(model.addBadpixel({12, 345}));
    QVERIFY(!model.addBadpixel({12, 345}));
    QCOMPARE(rowTexts(model), QStringList{"12 345 user"});
    QCOMPARE(added.count(), 1);
    QCOMPARE(added.at(0).at(0).toInt(), 1);
}

void TestBadpixelListModel::addingAtAFactoryEntryAddsNothing()
{
    BadpixelListModel model;
    BadpixelListModelPeer::append(model, {{12, 345, Factory}});
    QSignalSpy added(&model, &BadpixelListModel::pixelAdded);
    QVERIFY(!model.addBadpixel({12, 345}));
    QCOMPARE(model.rowCount(), 1);
    QCOMPARE(added.count(), 0);
}

void TestBadpixelListModel::addingAtAnIgnoredEntryAddsAUserEntry()
{
    BadpixelListModel model;
    BadpixelListModelPeer::append(model, {{12, 345, Ignore}});
    QVERIFY(model.addBadpixel({12, 345}));
    QVERIFY(!model.addBadpixel({12, 345}));
    QCOMPARE(rowTexts(model), (QStringList{"12 345 factory", "12 345 user"}));
    QCOMPARE(model.findBadpixel(12, 345, 1).row(), 0);
}

void TestBadpixelListModel::addingAppendsOneAnnouncedRow()
{
    BadpixelListModel model;
    BadpixelListModelPeer::append(model, sixUserEntries());
    QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
    QVERIFY(model.addBadpixel({100, 100}));
    QCOMPARE(ranges(inserted), QStringList{"6-6"});
    QCOMPARE(rowTexts(model).last(), QString("100 100 user"));
}

void TestBadpixelListModel::addingIsToldAfterTheRowIsThere()
{
    BadpixelListModel model;
    BadpixelListModelPeer::append(model, sixUserEntries());
    QStringList told;
    const auto tell = [&](const QString &what) { told << QString("%1: %2").arg(what).arg(model.rowCount()); };
    connect(&model, &QAbstractItemModel::rowsAboutToBeInserted, [&] { tell("about to insert"); });
    connect(&model, &QAbstractItemModel::rowsInserted, [&] { tell("inserted"); });
    connect(&model, &BadpixelListModel::pixelAdded, [&] { tell("added"); });
    QVERIFY(model.addBadpixel({100, 100}));
    QCOMPARE(told, (QStringList{"about to insert: 6", "inserted: 7", "added: 7"}));
}

void TestBadpixelListModel::addingCutsCoordinatesTo16Bits()
{
    BadpixelListModel model;
    QVERIFY(model.addBadpixel({65536 + 5, -1}));
    QCOMPARE(rowTexts(model), QStringList{"5 65535 user"});
    QVERIFY(!model.addBadpixel({5, 65535}));
    QVERIFY(!model.findBadpixel(65536 + 5, -1, 1).isValid());
    QVERIFY(model.findBadpixel(5, 65535, 1).isValid());
}

void TestBadpixelListModel::removingAFactoryEntryByHandIsRefused()
{
    BadpixelListModel model;
    BadpixelListModelPeer::append(model, {{1, 1, Factory}, {2, 2, Ignore}});
    QVERIFY(!model.removeUserBadpixel(0));
    QVERIFY(!model.removeUserBadpixel(1));
    QCOMPARE(model.rowCount(), 2);
}

void TestBadpixelListModel::removingByHandOutsideTheListIsRefused()
{
    BadpixelListModel model;
    QVERIFY(!model.removeUserBadpixel(0));
    model.addBadpixel({1, 1});
    QVERIFY(!model.removeUserBadpixel(-1));
    QVERIFY(!model.removeUserBadpixel(1));
    QCOMPARE(model.rowCount(), 1);
}

void TestBadpixelListModel::removingAUserEntryByHand()
{
    BadpixelListModel model;
    BadpixelListModelPeer::append(model, {{1, 1, Factory}, {2, 2, User}, {3, 3, User}});
    QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
    QVERIFY(model.removeUserBadpixel(1));
    QCOMPARE(ranges(removed), QStringList{"1-1"});
    QCOMPARE(rowTexts(model), (QStringList{"1 1 ignore", "3 3 user"}));
    QVERIFY(model.addBadpixel({2, 2}));
}

void TestBadpixelListModel::removingRowsBeyondTheEndRemovesThoseThatAreThere()
{
    BadpixelListModel model;
    BadpixelListModelPeer::append(model, sixUserEntries());
    QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
    QVERIFY(model.removeRows(5, 2));
    QCOMPARE(model.rowCount(), 5);
    QCOMPARE(rowTexts(model).last(), QString("4 14 user"));
    QCOMPARE(ranges(removed), QStringList{"5-6"});
}

void TestBadpixelListModel::removingRowsOutsideTheListChangesNothing()
{
    BadpixelListModel model;
    BadpixelListModelPeer::append(model, sixUserEntries());
    QVERIFY(model.removeRows(6, 3));
    QCOMPARE(model.rowCount(), 6);
}

void TestBadpixelListModel::insertedRowsAreUserEntriesAtTheOrigin()
{
    BadpixelListModel model;
    BadpixelListModelPeer::append(model, {{1, 1, Factory}, {2, 2, Factory}});
    QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
    QVERIFY(model.insertRows(1, 2));
    QCOMPARE(rowTexts(model), (QStringList{"1 1 ignore", "0 0 user", "0 0 user", "2 2 ignore"}));
    QCOMPARE(ranges(inserted), QStringList{"1-2"});
    QCOMPARE(model.findBadpixel(2, 2, 1).row(), 3);
    QCOMPARE(model.findBadpixel(0, 0, 1).row(), 1);
}

void TestBadpixelListModel::insertingOrRemovingNoRowsAnnouncesNothing()
{
    BadpixelListModel model;
    BadpixelListModelPeer::append(model, sixUserEntries());
    QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
    QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
    QVERIFY(model.insertRows(1, 0));
    QVERIFY(model.removeRows(1, 0));
    QVERIFY(model.insertRows(1, -2));
    QVERIFY(model.removeRows(1, -2));
    QCOMPARE(model.rowCount(), 6);
    QCOMPARE(inserted.count() + removed.count(), 0);
}

void TestBadpixelListModel::clearingUserEntriesLeavesTheOthers()
{
    BadpixelListModel model;
    BadpixelListModelPeer::append(model, {{1, 1, User}, {2, 2, User}, {3, 3, Factory}, {4, 4, User}});
    model.clearUserBadpixelList();
    QCOMPARE(rowTexts(model), QStringList{"3 3 ignore"});
}

void TestBadpixelListModel::clearingUserEntriesAnnouncesRowByRow()
{
    BadpixelListModel model;
    BadpixelListModelPeer::append(model, {{1, 1, User}, {2, 2, User}, {3, 3, Ignore}, {4, 4, User}});
    QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
    model.clearUserBadpixelList();
    QCOMPARE(ranges(removed), (QStringList{"0-0", "0-0", "1-1"}));
    QCOMPARE(rowTexts(model), QStringList{"3 3 factory"});
}

void TestBadpixelListModel::clearedRowsAreGoneBetweenTheAnnouncements()
{
    std::vector<Badpixel> list = randomEntries(300);
    BadpixelListModel model;
    BadpixelListModelPeer::append(model, list);
    connect(&model, &QAbstractItemModel::rowsRemoved, [&](const QModelIndex &, int row) {
        list.erase(list.begin() + row);
        QCOMPARE(model.rowCount(), static_cast<int>(list.size()));
        for (int i = 0; i < model.rowCount(); ++i) {
            QCOMPARE(model.badpixel(i).x, list[static_cast<std::size_t>(i)].x);
        }
    });
    model.clearUserBadpixelList();
    const auto isUser = [](const Badpixel &entry) { return entry.pixelclass == User; };
    QVERIFY(!list.empty());
    QVERIFY(std::none_of(list.begin(), list.end(), isUser));
    QVERIFY(model.addBadpixel({1, 2}));
    QCOMPARE(model.findBadpixel(1, 2, 1).row(), static_cast<int>(list.size()));
}

void TestBadpixelListModel::clearingAnnouncesAllRowsOnce()
{
    BadpixelListModel model;
    BadpixelListModelPeer::append(model, {{1, 1, User}, {2, 2, Factory}, {3, 3, Ignore}});
    QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
    model.clearBadpixelList();
    QCOMPARE(model.rowCount(), 0);
    QCOMPARE(ranges(removed), QStringList{"0-2"});
    QVERIFY(model.addBadpixel({2, 2}));
}

void TestBadpixelListModel::clearingAnEmptyListEmitsNothing()
{
    BadpixelListModel model;
    QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
    QSignalSpy announced(&model, &QAbstractItemModel::rowsAboutToBeRemoved);
    model.clearBadpixelList();
    model.clearUserBadpixelList();
    QCOMPARE(removed.count() + announced.count(), 0);
}

void TestBadpixelListModel::sortingByEachColumn_data()
{
    const QString a = "10 30 factory";
    const QString b = "20 10 ignore";
    const QString c = "30 20 user";
    QTest::addColumn<int>("column");
    QTest::addColumn<Qt::SortOrder>("order");
    QTest::addColumn<QStringList>("rows");
    QTest::newRow("x ascending") << 0 << Qt::AscendingOrder << QStringList{a, b, c};
    QTest::newRow("x descending") << 0 << Qt::DescendingOrder << QStringList{c, b, a};
    QTest::newRow("y ascending") << 1 << Qt::AscendingOrder << QStringList{b, c, a};
    QTest::newRow("y descending") << 1 << Qt::DescendingOrder << QStringList{a, c, b};
    QTest::newRow("class ascending") << 2 << Qt::AscendingOrder << QStringList{b, c, a};
    QTest::newRow("class descending") << 2 << Qt::DescendingOrder << QStringList{a, c, b};
}

// Equal entries may land in any order, so none are.
void TestBadpixelListModel::sortingByEachColumn()
{
    QFETCH(int, column);
    QFETCH(Qt::SortOrder, order);
    QFETCH(QStringList, rows);
    std::vector<Badpixel> list{{10, 30, Ignore}, {20, 10, Factory}, {30, 20, User}};
    const auto byX = [](const Badpixel &left, const Badpixel &right) { return left.x < right.x; };
    do {
        BadpixelListModel model;
        BadpixelListModelPeer::append(model, list);
        QSignalSpy changed(&model, &QAbstractItemModel::layoutChanged);
        model.sort(column, order);
        QCOMPARE(rowTexts(model), rows);
        QCOMPARE(changed.count(), 1);
    } while (std::next_permutation(list.begin(), list.end(), byX));
}

void TestBadpixelListModel::sortingByYDescending()
{
    BadpixelListModel model;
    BadpixelListModelPeer::append(model, {{1, 20, User}, {2, 40, Factory}, {3, 10, User}, {4, 30, User}});
    QSignalSpy changed(&model, &QAbstractItemModel::layoutChanged);
    model.sort(1, Qt::DescendingOrder);
    QCOMPARE(rowTexts(model), (QStringList{"2 40 ignore", "4 30 user", "1 20 user", "3 10 user"}));
    QCOMPARE(changed.count(), 1);
}

void TestBadpixelListModel::sortingByXIsUnsigned()
{
    BadpixelListModel model;
    BadpixelListModelPeer::append(model, {{40000, 1, User}, {9, 2, User}, {10, 3, User}});
    model.sort(0);
    QCOMPARE(rowTexts(model), (QStringList{"9 2 user", "10 3 user", "40000 1 user"}));
}

void TestBadpixelListModel::sortingByClassUsesTheStoredValue()
{
    BadpixelListModel model;
    BadpixelListModelPeer::append(model, {{1, 1, 200}, {2, 2, User}, {3, 3, Ignore}, {4, 4, Factory}});
    model.sort(2, Qt::AscendingOrder);
    QCOMPARE(rowTexts(model), (QStringList{"4 4 ignore", "2 2 user", "3 3 factory", "1 1 factory"}));
}

void TestBadpixelListModel::sortingByAFourthColumnThrows()
{
    BadpixelListModel model;
    BadpixelListModelPeer::append(model, sixUserEntries());
    QSignalSpy changed(&model, &QAbstractItemModel::layoutChanged);
    QCOMPARE(sortFailure(model, fourthColumn, Qt::AscendingOrder), QString("Sort Error"));
    QCOMPARE(sortFailure(model, -1, Qt::DescendingOrder), QString("Sort Error"));
    QCOMPARE(changed.count(), 0);
}

void TestBadpixelListModel::sortingInAnUnknownOrderThrows()
{
    BadpixelListModel model;
    BadpixelListModelPeer::append(model, sixUserEntries());
    QCOMPARE(sortFailure(model, 0, noOrder), QString("Sort Error"));
}

void TestBadpixelListModel::sortingAnEmptyListDoesNothing()
{
    BadpixelListModel model;
    QSignalSpy changed(&model, &QAbstractItemModel::layoutChanged);
    QCOMPARE(sortFailure(model, fourthColumn, noOrder), QString());
    model.sort(0);
    QCOMPARE(changed.count(), 0);
}

void TestBadpixelListModel::sortingOneRowComparesNothing()
{
    BadpixelListModel model;
    model.addBadpixel({1, 1});
    QSignalSpy changed(&model, &QAbstractItemModel::layoutChanged);
    QCOMPARE(sortFailure(model, fourthColumn, noOrder), QString());
    QCOMPARE(changed.count(), 1);
}

void TestBadpixelListModel::sortingThatThrowsKeepsEveryEntry()
{
    BadpixelListModel model;
    BadpixelListModelPeer::append(model, randomEntries(200));
    QStringList before = rowTexts(model);
    QCOMPARE(sortFailure(model, fourthColumn, Qt::AscendingOrder), QString("Sort Error"));
    QStringList after = rowTexts(model);
    before.sort();
    after.sort();
    QCOMPARE(after, before);
}

void TestBadpixelListModel::sortedRowsAreFoundAndAppendedBehind()
{
    BadpixelListModel model;
    BadpixelListModelPeer::append(model, {{9, 9, User}, {5, 5, User}});
    QCOMPARE(model.findBadpixel(9, 9, 1).row(), 0);
    model.sort(0, Qt::AscendingOrder);
    QCOMPARE(model.findBadpixel(9, 9, 1).row(), 1);
    model.addBadpixel({1, 1});
    QCOMPARE(rowTexts(model), (QStringList{"5 5 user", "9 9 user", "1 1 user"}));
}

void TestBadpixelListModel::findingIsStrictlyInsideTheTolerance()
{
    BadpixelListModel model;
    BadpixelListModelPeer::append(model, {{100, 200, User}});
    QVERIFY(model.findBadpixel(106, 194, 7).isValid());
    QVERIFY(!model.findBadpixel(107, 200, 7).isValid());
    QVERIFY(!model.findBadpixel(100, 193, 7).isValid());
    QVERIFY(model.findBadpixel(100, 200, 1).isValid());
    QVERIFY(!model.findBadpixel(101, 200, 1).isValid());
    QVERIFY(!model.findBadpixel(100, 200, 0).isValid());
    QVERIFY(!model.findBadpixel(100, 200, -7).isValid());
}

void TestBadpixelListModel::findingTakesTheFirstInListOrder()
{
    BadpixelListModel model;
    BadpixelListModelPeer::append(model, {{5, 5, Ignore}, {1, 1, User}, {1, 1, Factory}, {2, 2, User}});
    QCOMPARE(model.findBadpixel(1, 1, 1), model.index(1, 0));
    QCOMPARE(model.findBadpixel(2, 2, 7), model.index(0, 0));
    QCOMPARE(model.findBadpixel(2, 2, 2), model.index(1, 0));
    model.removeUserBadpixel(1);
    QCOMPARE(model.findBadpixel(1, 1, 1), model.index(1, 0));
}

void TestBadpixelListModel::findingNothing()
{
    BadpixelListModel model;
    QVERIFY(!model.findBadpixel(0, 0, 1).isValid());
    QVERIFY(!model.findBadpixel(0, 0, 7).isValid());
    BadpixelListModelPeer::append(model, {{0, 0, User}, {65535, 65535, User}});
    QVERIFY(!model.findBadpixel(-1, -1, 1).isValid());
    QVERIFY(!model.findBadpixel(65536, 65536, 1).isValid());
    QCOMPARE(model.findBadpixel(-3, -3, 7).row(), 0);
    QVERIFY(!model.findBadpixel(std::numeric_limits<int>::min(), 0, 7).isValid());
    QVERIFY(!model.findBadpixel(std::numeric_limits<int>::max(), 0, 7).isValid());
}

void TestBadpixelListModel::findingAgreesWithAWalkThroughTheList()
{
    const auto walk = [](const BadpixelListModel &list, int x, int y) {
        for (int row = 0; row < list.rowCount(); ++row) {
            if (list.badpixel(row).x == x && list.badpixel(row).y == y) {
                return row;
            }
        }
        return -1;
    };
    std::mt19937 random(4);
    const auto below = [&random](int limit) { return static_cast<int>(random() % unsigned(limit)); };
    BadpixelListModel model;
    for (int step = 0; step < 4000; ++step) {
        const QPoint place(below(8), below(8));
        const int row = model.rowCount() == 0 ? 0 : below(model.rowCount());
        switch (below(12)) {
        case 0:
            model.removeRows(row, 1 + below(4));
            break;
        case 1:
            model.sort(below(3), below(2) ? Qt::AscendingOrder : Qt::DescendingOrder);
            break;
        case 2:
            model.insertRows(row, 1);
            break;
        case 3:
            if (model.rowCount() > 0) {
                model.setData(model.index(row, below(2)), below(8));
            }
            break;
        case 4:
            BadpixelListModelPeer::append(
                model, {{std::uint16_t(place.x()), std::uint16_t(place.y()), std::uint8_t(below(3))}});
            break;
        default:
            model.addBadpixel(place);
            break;
        }
        QCOMPARE(model.findBadpixel(place.x(), place.y(), 1).row(), walk(model, place.x(), place.y()));
    }
}

void TestBadpixelListModel::longListsKeepEveryEntryFindable()
{
    const int count = 100000;
    const auto placeOf = [](int i) { return QPoint(i % 400, i / 400); };
    BadpixelListModel model;
    BadpixelListModelPeer::append(model, {{65000, 65000, Factory}});
    for (int i = 0; i < count; ++i) {
        QVERIFY(model.addBadpixel(placeOf(i)));
        QVERIFY(!model.addBadpixel(placeOf(i)));
    }
    QCOMPARE(model.rowCount(), count + 1);
    for (int i = 0; i < count; ++i) {
        QCOMPARE(model.findBadpixel(placeOf(i).x(), placeOf(i).y(), 1).row(), i + 1);
    }
    QVERIFY(!model.findBadpixel(400, 0, 1).isValid());
    model.clearUserBadpixelList();
    QCOMPARE(rowTexts(model), QStringList{"65000 65000 ignore"});
    QVERIFY(!model.findBadpixel(0, 0, 1).isValid());
    QVERIFY(model.addBadpixel({0, 0}));
}

void TestBadpixelListModel::announcementsAreConsistent()
{
    BadpixelListModel model;
    FlatProxy proxy;
    proxy.setSourceModel(&model);
    const QAbstractItemModelTester tester(&proxy, QAbstractItemModelTester::FailureReportingMode::QtTest);
    model.addBadpixel({3, 1});
    model.addBadpixel({1, 2});
    model.addBadpixel({2, 3});
    model.setData(model.index(1, 0), 7);
    model.setData(model.index(0, 2), "factory");
    model.insertRows(1, 2);
    model.removeRows(2, 1);
    model.sort(1, Qt::DescendingOrder);
    model.removeUserBadpixel(0);
    model.clearUserBadpixelList();
    QCOMPARE(proxy.rowCount(), 1);
    model.clearBadpixelList();
    QCOMPARE(proxy.rowCount(), 0);
}

QTEST_GUILESS_MAIN(TestBadpixelListModel)
#include "tst_badpixellistmodel.moc"
