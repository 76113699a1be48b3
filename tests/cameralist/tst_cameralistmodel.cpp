// SPDX-License-Identifier: MIT
// Tests the camera table: refreshing, matching rows, sorting, and a library that lies.
#include "cameralistmodel.h"

#include "camera.h"
#include "modeltext.h"
#include "testcamera.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QtTest>

#include <algorithm>
#include <limits>
#include <random>
#include <stdexcept>

namespace {

constexpr int never = 1000000; // an interval that no test waits for
constexpr int sixthColumn = 5;
constexpr int noOrder = 2;

void attach(const std::string &serial, std::uint32_t deviceId, std::uint32_t cameraId = 0)
{
    kelvosim::CameraSpec spec = testcamera::small();
    spec.serial = serial;
    spec.deviceId = deviceId;
    spec.cameraId = cameraId == 0 ? deviceId : cameraId;
    spec.model = "KV-" + std::to_string(deviceId);
    kelvosim::addCamera(spec);
}

void attachThree()
{
    attach("A", 1);
    attach("B", 2);
    attach("C", 3);
}

// Cameras whose device and camera ids have nothing to do with each other.
void attachMany(int count)
{
    std::mt19937 random(5);
    for (int i = 0; i < count; ++i) {
        kelvosim::CameraSpec spec = testcamera::small();
        spec.serial = "S" + std::to_string(i);
        spec.deviceId = static_cast<std::uint32_t>(i) + 1;
        spec.cameraId = 1 + static_cast<std::uint32_t>(random() % 250);
        spec.model = "M" + std::to_string(random() % 7);
        spec.usedElsewhere = random() % 2 == 0;
        kelvosim::addCamera(spec);
    }
}

struct CameraNumbers
{
    std::uint32_t device = 0;
    std::uint32_t camera = 0;
};

QStringList column(const QAbstractItemModel &model, int column)
{
    QStringList cells;
    for (int row = 0; row < model.rowCount(); ++row) {
        cells << model.index(row, column).data().toString();
    }
    return cells;
}

QStringList serials(const QAbstractItemModel &model)
{
    return column(model, 3);
}

QStringList statuses(const QAbstractItemModel &model)
{
    return column(model, 4);
}

QString sortFailure(CameraListModel &model, int column, int order)
{
    try {
        model.sort(column, static_cast<Qt::SortOrder>(order));
    } catch (const std::runtime_error &failure) {
        return QString(failure.what());
    }
    return QString();
}

QString refreshFailure(CameraListModel &model)
{
    try {
        model.updateList();
    } catch (const std::runtime_error &failure) {
        return QString(failure.what());
    }
    return QString();
}

// Everything that a model tells its views and the window, in order: "removed 0-1", "changed 2,0-2,4".
class Listener final : public QObject
{
public:
    explicit Listener(CameraListModel &model)
    {
        connect(&model, &QAbstractItemModel::rowsInserted, this,
                [this](const QModelIndex &, int first, int last) {
                    told << QString("inserted %1-%2").arg(first).arg(last);
                });
        connect(&model, &QAbstractItemModel::rowsRemoved, this,
                [this](const QModelIndex &, int first, int last) {
                    told << QString("removed %1-%2").arg(first).arg(last);
                });
        connect(&model, &QAbstractItemModel::dataChanged, this,
                [this](const QModelIndex &from, const QModelIndex &to, const QVector<int> &roles) {
                    told << QString("changed %1,%2-%3,%4")
                                .arg(from.row())
                                .arg(from.column())
                                .arg(to.row())
                                .arg(to.column());
                    if (!roles.isEmpty()) {
                        told << "with roles";
                    }
                });
        connect(&model, &QAbstractItemModel::layoutAboutToBeChanged, this,
                [this] { told << "layout about to"; });
        connect(&model, &QAbstractItemModel::layoutChanged, this, [this] { told << "layout"; });
        connect(&model, &CameraListModel::somethingChanged, this, [this] { told << "something"; });
        connect(&model, &CameraListModel::rowToSelect, this,
                [this](int row) { told << QString("select %1").arg(row); });
    }

    QStringList told;
};

} // namespace

Q_DECLARE_METATYPE(CameraNumbers)

class TestCameraListModel : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void headersNameTheColumns();
    void newModelHasNoRowsAndAsksNothing();
    void cellsShowACamera();
    void cellsOutsideAreInvalid();
    void entriesAreEqualWhenAllFieldsAre();

    void noCameraAndNoRowsOnlyNamesTheRowToSelect();
    void attachedCamerasBecomeRows();
    void refreshingAsksTheLibraryTwice();
    void nothingNewChangesNothing();
    void anUnpluggedCameraIsRemovedAlone();
    void theLastCameraGoneRemovesAllRowsAtOnce();
    void aListWithoutRecordsRemovesRowByRow();
    void swappedCamerasKeepTheirRows();
    void onlyChangedRowsAreAnnounced();
    void everyFieldIsCompared();
    void newCamerasGoToTheEnd();
    void aDeviceThatCameBackIsANewRow();
    void camerasWithOneDeviceIdKeepTheirRows();
    void theFirstCameraWithADeviceIdIsTaken();

    void theOpenCameraSaysOpenedOnceMatched();
    void anOpenCameraThatShowsUpSaysInUseAtFirst();
    void theClosedCameraIsFree();
    void aCameraWithoutSerialNumberCountsAsOpened();
    void aFreeCameraIsFreeWhateverItsMarkSays();

    void sortingByEachColumn_data();
    void sortingByEachColumn();
    void sortingByDeviceComparesWithTheCameraId_data();
    void sortingByDeviceComparesWithTheCameraId();
    void sortingSeveralByDeviceInsertsThemInTurn();
    void sortingManyCamerasKeepsEveryRow_data();
    void sortingManyCamerasKeepsEveryRow();
    void sortingByASixthColumnThrows();
    void sortingInAnUnknownOrderThrows();
    void sortingThatThrowsChangesNothing();
    void sortingOneRowComparesNothing();
    void sortingAnEmptyListDoesNothing();
    void aSortIsNotAppliedAgain();
    void announcementsAreConsistent();

    void aFailingNumberThrowsAndChangesNothing();
    void aFailingListThrowsAndChangesNothing();
    void refreshReportsFailuresAndTheNextGoesOn();
    void theTimerRefreshes();
    void theTimerGoesOnAfterFailures();

    void aCountBeyondTheBufferIsCut();
    void anAbsurdNumberOfCamerasIsSurvived();
    void anAbsurdNumberOfRecordsIsSurvived();
    void aNegativeNumberMeansNone();
    void aNumberTooSmallListsThatMany();
    void textsWithoutAnEndStayInTheirField();
};

void TestCameraListModel::init()
{
    kelvosim::reset();
}

void TestCameraListModel::cleanup()
{
    QCOMPARE(kelvosim::openHandles(), 0);
}

void TestCameraListModel::headersNameTheColumns()
{
    const CameraListModel model(never);
    QCOMPARE(model.columnCount(), 5);
    QStringList titles;
    for (int section = 0; section < 5; ++section) {
        titles << model.headerData(section, Qt::Horizontal).toString();
    }
    QCOMPARE(titles, (QStringList{"Cam", "Dev", "Model", "SerNo", "Status"}));
    QCOMPARE(model.headerData(0, Qt::Vertical), QVariant(0));
    QCOMPARE(model.headerData(7, Qt::Vertical), QVariant(7));
    QVERIFY(!model.headerData(0, Qt::Horizontal, Qt::EditRole).isValid());
    QVERIFY(!model.headerData(0, Qt::Vertical, Qt::DecorationRole).isValid());
}

void TestCameraListModel::newModelHasNoRowsAndAsksNothing()
{
    attach("A", 1);
    kelvosim::clearLog();
    const CameraListModel model(never);
    QCOMPARE(model.rowCount(), 0);
    QVERIFY(kelvosim::log().empty());
}

void TestCameraListModel::cellsShowACamera()
{
    attach("KV00001280", 4000000000, 17);
    CameraListModel model(never);
    model.updateList();
    QCOMPARE(model.index(0, 0).data(), QVariant(qulonglong(17)));
    QCOMPARE(model.index(0, 0).data().type(), QVariant::ULongLong);
    QCOMPARE(model.index(0, 1).data(), QVariant(qulonglong(4000000000)));
    QCOMPARE(model.index(0, 1).data().type(), QVariant::ULongLong);
    QCOMPARE(rowTexts(model), QStringList{"17 4000000000 KV-4000000000 KV00001280 free"});
}

void TestCameraListModel::cellsOutsideAreInvalid()
{
    attachThree();
    CameraListModel longer(never);
    longer.updateList();
    kelvosim::unplug("B");
    kelvosim::unplug("C");
    CameraListModel model(never);
    model.updateList();
    QVERIFY(model.data(longer.index(0, 0)).isValid());
    QVERIFY(!model.data(longer.index(1, 0)).isValid());
    QVERIFY(!model.data(QModelIndex()).isValid());
    QVERIFY(!model.data(model.index(0, 0), Qt::EditRole).isValid());
}

void TestCameraListModel::entriesAreEqualWhenAllFieldsAre()
{
    const CameraEntry entry;
    QVERIFY(entry == CameraEntry());
    std::vector<CameraEntry> others(7);
    others[0].opened = true;
    others[1].cameraId = 1;
    others[2].deviceId = 1;
    others[3].extraWord = 1;
    others[4].inUse = 1;
    others[5].serialNumber = "1";
    others[6].model = "1";
    for (const CameraEntry &other : others) {
        QVERIFY(entry != other);
        QVERIFY(!(entry == other));
    }
}

void TestCameraListModel::noCameraAndNoRowsOnlyNamesTheRowToSelect()
{
    CameraListModel model(never);
    const Listener listener(model);
    model.updateList();
    QCOMPARE(listener.told, QStringList{"select 0"});
}

void TestCameraListModel::attachedCamerasBecomeRows()
{
    attachThree();
    kelvosim::setUsedElsewhere("B", true);
    CameraListModel model(never);
    const Listener listener(model);
    model.updateList();
    QCOMPARE(rowTexts(model), (QStringList{"1 1 KV-1 A free", "2 2 KV-2 B in use", "3 3 KV-3 C free"}));
    QCOMPARE(listener.told, (QStringList{"inserted 0-2", "something", "select 0"}));
    QCOMPARE(model.camera(1).deviceId, 2u);
    QVERIFY(model.camera(1).inUse != 0);
}

void TestCameraListModel::refreshingAsksTheLibraryTwice()
{
    attach("A", 1);
    CameraListModel model(never);
    kelvosim::clearLog();
    model.updateList();
    QCOMPARE(testcamera::calls(), (QStringList{"vx_GetNumberOfCameras", "vx_GetCameraList"}));
}

void TestCameraListModel::nothingNewChangesNothing()
{
    attachThree();
    CameraListModel model(never);
    model.updateList();
    const Listener listener(model);
    model.updateList();
    QCOMPARE(listener.told, QStringList{"select 0"});
}

void TestCameraListModel::anUnpluggedCameraIsRemovedAlone()
{
    attachThree();
    CameraListModel model(never);
    model.updateList();
    kelvosim::unplug("B");
    const Listener listener(model);
    model.updateList();
    QCOMPARE(serials(model), (QStringList{"A", "C"}));
    QCOMPARE(listener.told, (QStringList{"removed 1-1", "something", "select 0"}));
}

void TestCameraListModel::theLastCameraGoneRemovesAllRowsAtOnce()
{
    attachThree();
    CameraListModel model(never);
    model.updateList();
    kelvosim::lieAboutCameras(0, -1);
    const Listener listener(model);
    model.updateList();
    QCOMPARE(model.rowCount(), 0);
    QCOMPARE(listener.told, (QStringList{"removed 0-2", "something", "select 0"}));
}

void TestCameraListModel::aListWithoutRecordsRemovesRowByRow()
{
    attachThree();
    CameraListModel model(never);
    model.updateList();
    kelvosim::lieAboutCameras(-1, 0);
    const Listener listener(model);
    model.updateList();
    QCOMPARE(model.rowCount(), 0);
    QCOMPARE(listener.told,
             (QStringList{"removed 0-0", "removed 0-0", "removed 0-0", "something", "select 0"}));
}

void TestCameraListModel::swappedCamerasKeepTheirRows()
{
    attachThree();
    CameraListModel model(never);
    model.updateList();
    kelvosim::setListOrder({"C", "A", "B"});
    const Listener listener(model);
    model.updateList();
    QCOMPARE(serials(model), (QStringList{"A", "B", "C"}));
    QCOMPARE(listener.told, QStringList{"select 0"});
}

void TestCameraListModel::onlyChangedRowsAreAnnounced()
{
    attachThree();
    CameraListModel model(never);
    model.updateList();
    kelvosim::setListOrder({"C", "B", "A"});
    kelvosim::setUsedElsewhere("C", true);
    const Listener listener(model);
    model.updateList();
    QCOMPARE(statuses(model), (QStringList{"free", "free", "in use"}));
    QCOMPARE(listener.told, (QStringList{"changed 2,0-2,4", "something", "select 0"}));
}

void TestCameraListModel::everyFieldIsCompared()
{
    attach("A", 1);
    CameraListModel model(never);
    model.updateList();
    kelvosim::removeCamera("A");
    kelvosim::CameraSpec spec = testcamera::small();
    spec.serial = "A";
    spec.deviceId = 1;
    spec.cameraId = 1;
    spec.model = "KV-1";
    spec.extraWord = 3;
    kelvosim::addCamera(spec);
    const Listener listener(model);
    model.updateList();
    QCOMPARE(model.camera(0).extraWord, 3u);
    QCOMPARE(listener.told, (QStringList{"changed 0,0-0,4", "something", "select 0"}));
}

void TestCameraListModel::newCamerasGoToTheEnd()
{
    attach("B", 5);
    CameraListModel model(never);
    model.updateList();
    attach("A", 2);
    attach("C", 9);
    kelvosim::setListOrder({"A", "B", "C"});
    const Listener listener(model);
    model.updateList();
    QCOMPARE(serials(model), (QStringList{"B", "A", "C"}));
    QCOMPARE(listener.told, (QStringList{"inserted 1-2", "something", "select 0"}));
}

void TestCameraListModel::aDeviceThatCameBackIsANewRow()
{
    attachThree();
    CameraListModel model(never);
    model.updateList();
    kelvosim::unplug("A");
    model.updateList();
    kelvosim::plug("A");
    model.updateList();
    QCOMPARE(serials(model), (QStringList{"B", "C", "A"}));
}

void TestCameraListModel::camerasWithOneDeviceIdKeepTheirRows()
{
    attach("A", 7, 1);
    attach("B", 7, 2);
    CameraListModel model(never);
    model.updateList();
    QCOMPARE(serials(model), (QStringList{"A", "B"}));
    Listener listener(model);
    model.updateList();
    QCOMPARE(serials(model), (QStringList{"A", "B"}));
    QCOMPARE(listener.told, QStringList{"select 0"});

    attach("C", 7, 3);
    listener.told.clear();
    model.updateList();
    QCOMPARE(serials(model), (QStringList{"A", "B", "C"}));
    QCOMPARE(listener.told, (QStringList{"inserted 2-2", "something", "select 0"}));
}

void TestCameraListModel::theFirstCameraWithADeviceIdIsTaken()
{
    attach("A", 7, 1);
    attach("B", 7, 2);
    attach("C", 8, 3);
    CameraListModel model(never);
    model.updateList();
    kelvosim::setListOrder({"C", "B", "A"});
    const Listener listener(model);
    model.updateList();
    QCOMPARE(serials(model), (QStringList{"B", "A", "C"}));
    QCOMPARE(listener.told, (QStringList{"changed 0,0-0,4", "changed 1,0-1,4", "something", "select 0"}));
}

void TestCameraListModel::theOpenCameraSaysOpenedOnceMatched()
{
    attachThree();
    CameraListModel model(never);
    model.updateList();
    Camera camera;
    camera.open(2);
    kelvosim::setUsedElsewhere("C", true);
    const Listener listener(model);
    model.setOpenCamera(&camera);
    QVERIFY(listener.told.isEmpty());
    model.updateList();
    QCOMPARE(statuses(model), (QStringList{"free", "opened", "in use"}));
    QVERIFY(model.camera(1).opened);
    QVERIFY(!model.camera(2).opened);
}

void TestCameraListModel::anOpenCameraThatShowsUpSaysInUseAtFirst()
{
    attachThree();
    Camera camera;
    camera.open(2);
    CameraListModel model(never);
    model.setOpenCamera(&camera);
    model.updateList();
    QCOMPARE(statuses(model), (QStringList{"free", "in use", "free"}));
    model.updateList();
    QCOMPARE(statuses(model), (QStringList{"free", "opened", "free"}));
}

void TestCameraListModel::theClosedCameraIsFree()
{
    attachThree();
    CameraListModel model(never);
    Camera camera;
    connect(&camera, &Camera::cameraOpened, &model, &CameraListModel::setOpenCamera);
    connect(&camera, &Camera::cameraClosed, &model, &CameraListModel::clearOpenCamera);
    connect(&camera, &Camera::cameraOpened, &model, &CameraListModel::refresh);
    model.updateList();
    camera.open(3);
    QCOMPARE(statuses(model), (QStringList{"free", "free", "opened"}));
    camera.close();
    QCOMPARE(statuses(model), (QStringList{"free", "free", "opened"}));
    model.updateList();
    QCOMPARE(statuses(model), (QStringList{"free", "free", "free"}));
    QVERIFY(!model.camera(2).opened);
}

void TestCameraListModel::aCameraWithoutSerialNumberCountsAsOpened()
{
    attachThree();
    kelvosim::lieAboutTexts("B", std::string(1, '\0'), std::string());
    kelvosim::setUsedElsewhere("B", true);
    CameraListModel model(never);
    model.updateList();
    QCOMPARE(model.camera(1).serialNumber, QString());
    QCOMPARE(statuses(model), (QStringList{"free", "in use", "free"}));
    model.updateList();
    QCOMPARE(statuses(model), (QStringList{"free", "opened", "free"}));
    model.clearOpenCamera();
    model.updateList();
    QCOMPARE(statuses(model), (QStringList{"free", "opened", "free"}));
}

void TestCameraListModel::aFreeCameraIsFreeWhateverItsMarkSays()
{
    attach("A", 1);
    kelvosim::lieAboutTexts("A", std::string(1, '\0'), std::string());
    CameraListModel model(never);
    model.updateList();
    model.updateList();
    QVERIFY(model.camera(0).opened);
    QCOMPARE(statuses(model), QStringList{"free"});
}

void TestCameraListModel::sortingByEachColumn_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<QStringList>("ascending");
    QTest::newRow("Cam") << 0 << QStringList{"Y", "Z", "X"};
    QTest::newRow("Model") << 2 << QStringList{"X", "Y", "Z"};
    QTest::newRow("SerNo") << 3 << QStringList{"X", "Y", "Z"};
    QTest::newRow("Status") << 4 << QStringList{"Z", "X", "Y"};
}

void TestCameraListModel::sortingByEachColumn()
{
    QFETCH(int, column);
    QFETCH(QStringList, ascending);
    attach("X", 1, 3000000000);
    attach("Y", 2, 1);
    attach("Z", 3, 2000000000);
    kelvosim::setUsedElsewhere("X", true);
    Camera camera;
    camera.open(2);
    CameraListModel model(never);
    model.setOpenCamera(&camera);
    model.updateList();
    model.updateList();

    const Listener listener(model);
    model.sort(column, Qt::DescendingOrder);
    QStringList descending = ascending;
    std::reverse(descending.begin(), descending.end());
    QCOMPARE(serials(model), descending);
    model.sort(column, Qt::AscendingOrder);
    QCOMPARE(serials(model), ascending);
    QCOMPARE(listener.told, (QStringList{"layout", "layout"}));
}

// Of two rows the lower one moves up when its device id stands in the order to the upper one's camera id.
void TestCameraListModel::sortingByDeviceComparesWithTheCameraId_data()
{
    QTest::addColumn<Qt::SortOrder>("order");
    QTest::addColumn<CameraNumbers>("upper");
    QTest::addColumn<CameraNumbers>("lower");
    QTest::addColumn<bool>("swapped");
    const Qt::SortOrder up = Qt::AscendingOrder;
    const Qt::SortOrder down = Qt::DescendingOrder;
    QTest::newRow("5 < 9, though 3 < 5") << up << CameraNumbers{3, 9} << CameraNumbers{5, 1} << true;
    QTest::newRow("not 3 < 1, though 3 < 5") << up << CameraNumbers{5, 1} << CameraNumbers{3, 9} << false;
    QTest::newRow("3 > 1, though 3 < 5") << down << CameraNumbers{5, 1} << CameraNumbers{3, 9} << true;
    // The mirror of ascending, 9 < 2 or 3 < 1, would leave both where they are.
    QTest::newRow("3 > 1, no mirror") << down << CameraNumbers{9, 1} << CameraNumbers{3, 2} << true;
    QTest::newRow("9 > 2, no mirror") << down << CameraNumbers{3, 2} << CameraNumbers{9, 1} << true;
    // The mirror, 3 < 8, would swap.
    QTest::newRow("not 4 > 8, no mirror") << down << CameraNumbers{3, 8} << CameraNumbers{4, 9} << false;
}

void TestCameraListModel::sortingByDeviceComparesWithTheCameraId()
{
    QFETCH(Qt::SortOrder, order);
    QFETCH(CameraNumbers, upper);
    QFETCH(CameraNumbers, lower);
    QFETCH(bool, swapped);
    attach("upper", upper.device, upper.camera);
    attach("lower", lower.device, lower.camera);
    CameraListModel model(never);
    model.updateList();
    model.sort(1, order);
    QCOMPARE(serials(model), swapped ? (QStringList{"lower", "upper"}) : (QStringList{"upper", "lower"}));
}

/// Each row goes to the front when it comes before the first row, else up for as long as it comes before the
/// next.
void TestCameraListModel::sortingSeveralByDeviceInsertsThemInTurn()
{
    attach("A", 1, 3);
    attach("B", 4, 2);
    attach("C", 3, 1);
    attach("D", 2, 4);
    CameraListModel model(never);
    model.updateList();
    model.sort(1, Qt::AscendingOrder);
    QCOMPARE(serials(model), (QStringList{"D", "A", "B", "C"}));
}

void TestCameraListModel::sortingManyCamerasKeepsEveryRow_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<Qt::SortOrder>("order");
    for (int column = 0; column < 5; ++column) {
        const QByteArray name = QByteArray::number(column);
        QTest::newRow(name + " ascending") << column << Qt::AscendingOrder;
        QTest::newRow(name + " descending") << column << Qt::DescendingOrder;
    }
}

void TestCameraListModel::sortingManyCamerasKeepsEveryRow()
{
    QFETCH(int, column);
    QFETCH(Qt::SortOrder, order);
    attachMany(200);
    CameraListModel model(never);
    model.updateList();
    QStringList before = rowTexts(model);
    model.sort(column, order);
    QStringList after = rowTexts(model);
    QCOMPARE(after.size(), 200);
    before.sort();
    after.sort();
    QCOMPARE(after, before);
}

void TestCameraListModel::sortingByASixthColumnThrows()
{
    attachThree();
    CameraListModel model(never);
    model.updateList();
    QCOMPARE(sortFailure(model, sixthColumn, Qt::AscendingOrder), QString("Sort Error"));
    QCOMPARE(sortFailure(model, sixthColumn, Qt::DescendingOrder), QString("Sort Error"));
    QCOMPARE(sortFailure(model, -1, Qt::AscendingOrder), QString("Sort Error"));
}

void TestCameraListModel::sortingInAnUnknownOrderThrows()
{
    attachThree();
    CameraListModel model(never);
    model.updateList();
    QCOMPARE(sortFailure(model, 1, noOrder), QString("Sort Error"));
}

void TestCameraListModel::sortingThatThrowsChangesNothing()
{
    attachMany(200);
    CameraListModel model(never);
    model.updateList();
    const QStringList before = rowTexts(model);
    const Listener listener(model);
    QCOMPARE(sortFailure(model, sixthColumn, Qt::AscendingOrder), QString("Sort Error"));
    QCOMPARE(rowTexts(model), before);
    QVERIFY(listener.told.isEmpty());
}

void TestCameraListModel::sortingOneRowComparesNothing()
{
    attach("A", 1);
    CameraListModel model(never);
    model.updateList();
    const Listener listener(model);
    QCOMPARE(sortFailure(model, sixthColumn, noOrder), QString());
    QCOMPARE(listener.told, QStringList{"layout"});
}

void TestCameraListModel::sortingAnEmptyListDoesNothing()
{
    CameraListModel model(never);
    const Listener listener(model);
    QCOMPARE(sortFailure(model, sixthColumn, noOrder), QString());
    QVERIFY(listener.told.isEmpty());
}

void TestCameraListModel::aSortIsNotAppliedAgain()
{
    attachThree();
    CameraListModel model(never);
    model.updateList();
    model.sort(3, Qt::DescendingOrder);
    attach("Z", 9);
    model.updateList();
    QCOMPARE(serials(model), (QStringList{"C", "B", "A", "Z"}));
}

void TestCameraListModel::announcementsAreConsistent()
{
    CameraListModel model(never);
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    model.updateList();
    attachThree();
    model.updateList();
    kelvosim::setUsedElsewhere("B", true);
    model.updateList();
    model.sort(4, Qt::DescendingOrder);
    kelvosim::unplug("A");
    attach("D", 4);
    model.updateList();
    QCOMPARE(model.rowCount(), 3);
    kelvosim::unplug("B");
    kelvosim::unplug("C");
    kelvosim::unplug("D");
    model.updateList();
    QCOMPARE(model.rowCount(), 0);
}

void TestCameraListModel::aFailingNumberThrowsAndChangesNothing()
{
    attachThree();
    CameraListModel model(never);
    model.updateList();
    kelvosim::unplug("B");
    kelvosim::failCall("vx_GetNumberOfCameras", 1, 3, "the library's own text");
    const Listener listener(model);
    QCOMPARE(refreshFailure(model), QString("Can't get number of cameras."));
    QCOMPARE(serials(model), (QStringList{"A", "B", "C"}));
    QVERIFY(listener.told.isEmpty());
}

void TestCameraListModel::aFailingListThrowsAndChangesNothing()
{
    attachThree();
    CameraListModel model(never);
    model.updateList();
    kelvosim::unplug("B");
    kelvosim::failCall("vx_GetCameraList", 1, 3, "the library's own text");
    const Listener listener(model);
    QCOMPARE(refreshFailure(model), QString("Can't get camera list."));
    QCOMPARE(serials(model), (QStringList{"A", "B", "C"}));
    QVERIFY(listener.told.isEmpty());
}

void TestCameraListModel::refreshReportsFailuresAndTheNextGoesOn()
{
    attachThree();
    CameraListModel model(never);
    QSignalSpy failed(&model, &CameraListModel::refreshFailed);
    kelvosim::failCall("vx_GetCameraList", 1, 3, "");
    model.refresh();
    QCOMPARE(failed.count(), 1);
    QCOMPARE(failed.at(0).at(0).toString(), QString("Can't get camera list."));
    QCOMPARE(failed.at(0).at(1).toInt(), 2000);
    QCOMPARE(model.rowCount(), 0);
    model.refresh();
    QCOMPARE(failed.count(), 1);
    QCOMPARE(model.rowCount(), 3);
}

void TestCameraListModel::theTimerRefreshes()
{
    attachThree();
    const CameraListModel model(20);
    QTRY_COMPARE(model.rowCount(), 3);
    kelvosim::unplug("A");
    QTRY_COMPARE(model.rowCount(), 2);
}

void TestCameraListModel::theTimerGoesOnAfterFailures()
{
    attachThree();
    kelvosim::failCall("vx_GetNumberOfCameras", kelvosim::EveryCall, 3, "");
    const CameraListModel model(20);
    QSignalSpy failed(&model, &CameraListModel::refreshFailed);
    QTRY_VERIFY(failed.count() >= 2);
    QCOMPARE(model.rowCount(), 0);
    kelvosim::clearFaults();
    QTRY_COMPARE(model.rowCount(), 3);
}

void TestCameraListModel::aCountBeyondTheBufferIsCut()
{
    attachThree();
    kelvosim::lieAboutCameras(-1, std::numeric_limits<std::int32_t>::max());
    CameraListModel model(never);
    model.updateList();
    QCOMPARE(serials(model), (QStringList{"A", "B", "C"}));
}

void TestCameraListModel::anAbsurdNumberOfCamerasIsSurvived()
{
    attachThree();
    kelvosim::lieAboutCameras(std::numeric_limits<std::int32_t>::max(), -1);
    CameraListModel model(never);
    model.updateList();
    QCOMPARE(serials(model), (QStringList{"A", "B", "C"}));
}

// Both numbers lie: the records behind the true ones are empty and share the device id 0.
void TestCameraListModel::anAbsurdNumberOfRecordsIsSurvived()
{
    constexpr int lie = std::numeric_limits<std::int32_t>::max();
    constexpr int mostRows = 0x8000;
    attachThree();
    kelvosim::lieAboutCameras(lie, lie);
    CameraListModel model(never);
    model.updateList();
    QCOMPARE(model.rowCount(), mostRows);
    Listener listener(model);
    model.updateList();
    QCOMPARE(model.rowCount(), mostRows);
    QCOMPARE(serials(model).mid(0, 4), (QStringList{"A", "B", "C", ""}));
    // Records without a serial number count as opened once they are found again.
    QCOMPARE(listener.told.size(), mostRows - 3 + 2);
    QCOMPARE(listener.told.first(), QString("changed 3,0-3,4"));
    QCOMPARE(listener.told.mid(mostRows - 4),
             (QStringList{"changed 32767,0-32767,4", "something", "select 0"}));
    listener.told.clear();
    model.updateList();
    QCOMPARE(listener.told, QStringList{"select 0"});

    kelvosim::lieAboutCameras(-1, -1);
    model.updateList();
    QCOMPARE(serials(model), (QStringList{"A", "B", "C"}));
}

void TestCameraListModel::aNegativeNumberMeansNone()
{
    attachThree();
    CameraListModel model(never);
    model.updateList();
    kelvosim::lieAboutCameras(-5, -1);
    const Listener listener(model);
    model.updateList();
    QCOMPARE(listener.told, (QStringList{"removed 0-2", "something", "select 0"}));
}

void TestCameraListModel::aNumberTooSmallListsThatMany()
{
    attachThree();
    kelvosim::lieAboutCameras(2, 3);
    CameraListModel model(never);
    model.updateList();
    QCOMPARE(serials(model), (QStringList{"A", "B"}));
}

void TestCameraListModel::textsWithoutAnEndStayInTheirField()
{
    attachThree();
    kelvosim::lieAboutTexts("C", std::string(16, 'S'), std::string(80, 'M'));
    CameraListModel model(never);
    model.updateList();
    QCOMPARE(model.camera(2).serialNumber, QString(16, 'S'));
    QCOMPARE(model.camera(2).model, QString(80, 'M'));
    kelvosim::lieAboutTexts("A", std::string(16, 'T'), std::string(80, 'N'));
    model.updateList();
    QCOMPARE(model.camera(0).model, QString(80, 'N'));
}

QTEST_GUILESS_MAIN(TestCameraListModel)
#include "tst_cameralistmodel.moc"
