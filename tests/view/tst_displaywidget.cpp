// SPDX-License-Identifier: MIT
// Tests the image view on the pixels that it shows, and by real mouse and key events.
#include "displaywidget.h"

#include "hotpixels/badpixellistmodelpeer.h"
#include "plainview.h"

#include <QItemSelectionModel>
#include <QLabel>
#include <QPainter>
#include <QPointer>
#include <QRandomGenerator>
#include <QScrollBar>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QtTest>

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

using Preparation = std::function<void(DisplayWidget &)>;
Q_DECLARE_METATYPE(Preparation)

namespace {

const QSize FrameSize(40, 30);

/// An 8-bit frame without a colour table, as the camera makes them; neighbours differ.
QImage gradientFrame(const QSize &size = FrameSize)
{
    QImage frame(size, QImage::Format_Indexed8);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            frame.scanLine(y)[x] = static_cast<uchar>(x * 5 + y * 3);
    }
    return frame;
}

QImage blackFrame(const QSize &size = FrameSize)
{
    QImage frame(size, QImage::Format_Indexed8);
    frame.fill(0);
    return frame;
}

QImage black32(const QSize &size = FrameSize)
{
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(Qt::black);
    return picture;
}

/// A black frame with a bright bar.
QImage frameWithLine(const QRect &line)
{
    QImage frame = blackFrame();
    for (int y = line.top(); y <= line.bottom(); ++y)
        std::fill_n(frame.scanLine(y) + line.left(), line.width(), uchar(255));
    return frame;
}

/// Any shade or colour anywhere.
QImage noiseFrame(QRandomGenerator &random, const QSize &size, QImage::Format format)
{
    QImage frame(size, format);
    for (int y = 0; y < size.height(); ++y) {
        std::generate_n(frame.scanLine(y), frame.bytesPerLine(),
                        [&random] { return static_cast<uchar>(random.generate()); });
    }
    return frame;
}

QSize randomSize(QRandomGenerator &random, int largestSide)
{
    const int width = random.bounded(1, largestSide + 1);
    return QSize(width, random.bounded(1, largestSide + 1));
}

QString inWords(const QSize &size)
{
    return QStringLiteral("%1 x %2").arg(size.width()).arg(size.height());
}

/// Where two pictures first differ; empty where they are the same.
QString difference(const QImage &picture, const QImage &expected)
{
    if (picture.size() != expected.size())
        return inWords(picture.size()) + QStringLiteral(" instead of ") + inWords(expected.size());
    for (int y = 0; y < expected.height(); ++y) {
        for (int x = 0; x < expected.width(); ++x) {
            if (picture.pixel(x, y) != expected.pixel(x, y))
                return QStringLiteral("pixel %1, %2").arg(x).arg(y);
        }
    }
    return QString();
}

QImage pictureIn(const QLabel &label)
{
    return label.pixmap(Qt::ReturnByValue).toImage().convertToFormat(QImage::Format_RGB32);
}

/// Counts how often a widget paints itself.
class PaintCount : public QObject
{
public:
    explicit PaintCount(QWidget *widget)
        : QObject(widget)
    {
        widget->installEventFilter(this);
    }

    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }

    int count = 0;
};

QPoint clickedPixel(const QSignalSpy &spy)
{
    return spy.count() == 1 ? spy.first().first().toPoint() : QPoint(-1000, -1000);
}

} // namespace

class TestDisplayWidget : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void showsNothingBeforeTheFirstFrame();
    void looksAsTheWindowExpects();
    void deletesItsLabel();
    void aLabelThatWentBeforeIsNotDeletedAgain();
    void withoutHighlightingTheFrameIsShownAsItIs();
    void aFrameWithoutColourTableIsShownGrey();
    void aNullImageLeavesTheViewAsItWas();
    void clearKeepsTheFrame();
    void settersDoNotRedraw();
    void theFrameOutlivesItsBuffer();
    void aFrameLikeTheLastOutlivesItsBuffer();
    void a32BitFrameIsNeverDrawnInto();
    void aFrameLikeTheLastLeavesTheScrollBarsAlone();

    void anEntryAtTheOriginIsClippedNotMoved();
    void anEntryIsCircledWithinNinePixels();
    void everyEntryIsCircledInTheOrderOfTheList();
    void entriesOutsideTheImageAreLeftOut();
    void circlesAreColouredByClass_data();
    void circlesAreColouredByClass();
    void circlesGrowWithTheZoom();
    void theSelectedEntryGetsAThickBlueCircle();
    void aSelectionBeyondTheListIsLeftOut();
    void theCrossHairNeedsFullScale_data();
    void theCrossHairNeedsFullScale();
    void theCrossHairIsFaint();
    void aCoordinateOfMinusOneMeansNoCrossHair();
    void circlesAreOpaqueBesideTheCrossHair();

    void scaledSidesAreTruncated();
    void toFitKeepsTheAspectRatio_data();
    void toFitKeepsTheAspectRatio();
    void aPictureTooLargeHalvesTheScale();
    void aPictureStillTooLargeIsHalvedOnlyOnce();
    void aFitIntoNothingReportsScaleZero();

    void looksLikeThePlainView_data();
    void looksLikeThePlainView();
    void looksLikeThePlainViewAtEveryPlaceOfASmallFrame();
    void looksLikeThePlainViewAfterEveryChange();
    void aPictureThatSomebodyKeepsIsNotDrawnOver();
    void aPictureWiderThanQtScalesShowsTheFrameUpToItsEnd();
    void aFrameTooWideFor32BitsLeavesTheViewAsItWas();

    void aClickAddressesThePixelUnderIt_data();
    void aClickAddressesThePixelUnderIt();
    void aClickIntoAScrolledViewAddressesThePixelUnderIt();
    void aClickSixPixelsBesideAnEntrySelectsItsRow();
    void aClickSevenPixelsBesideAnEntryClearsTheSelectionAndReports();
    void aClickTakesTheFirstOfSeveralEntries();
    void aClickWithoutListAndSelectionReportsThePixel();
    void aClickIntoAFittedViewGoesThroughThePicturesSize();
    void aClickIntoAFittedRowOfPixelsReachesItsEnd();
    void aClickIntoAFittedViewWithoutPictureAddressesNothing_data();
    void aClickIntoAFittedViewWithoutPictureAddressesNothing();
    void otherButtonsDoNothing();
    void theRightButtonComesFirst();

    void aRightDragScrolls();
    void movesWithoutTheRightButtonAreIgnored();
    void keysTravelOn();

private:
    QLabel *label() const { return qobject_cast<QLabel *>(view->widget()); }
    QImage shown() const;
    QImage shownFor(const QImage &frame);
    void addUserEntry(int x, int y) { list->addBadpixel(QPoint(x, y)); }
    void clickLabel(const QPoint &viewPoint) { QTest::mouseClick(label(), Qt::LeftButton, {}, viewPoint); }
    void send(QEvent::Type type, const QPoint &viewportPoint, Qt::MouseButtons buttons);
    void showLargeFrame();
    void prepare(PlainView &plain, double scale, const QPoint &magnifierPosition);
    void plantEntries(QRandomGenerator &random, int count, const QSize &size);

    std::unique_ptr<DisplayWidget> view;
    std::unique_ptr<BadpixelListModel> list;
    std::unique_ptr<QItemSelectionModel> selection;
};

void TestDisplayWidget::init()
{
    list = std::make_unique<BadpixelListModel>();
    selection = std::make_unique<QItemSelectionModel>(list.get());
    view = std::make_unique<DisplayWidget>();
    view->setListModel(list.get());
    view->setSelectionModel(selection.get());
    view->setHighlight(true);
    view->resize(302, 202);
}

void TestDisplayWidget::cleanup()
{
    view.reset();
    selection.reset();
    list.reset();
}

QImage TestDisplayWidget::shown() const
{
    return pictureIn(*label());
}

QImage TestDisplayWidget::shownFor(const QImage &frame)
{
    view->setImage(frame);
    return shown();
}

void TestDisplayWidget::send(QEvent::Type type, const QPoint &viewportPoint, Qt::MouseButtons buttons)
{
    QMouseEvent event(type, viewportPoint, Qt::NoButton, buttons, Qt::NoModifier);
    QCoreApplication::sendEvent(view->viewport(), &event);
}

/// A frame larger than the view, scrolled to (100, 80).
void TestDisplayWidget::showLargeFrame()
{
    view->show();
    view->setImage(blackFrame(QSize(800, 600)));
    QTRY_VERIFY(view->verticalScrollBar()->maximum() > 300);
    view->horizontalScrollBar()->setValue(100);
    view->verticalScrollBar()->setValue(80);
}

void TestDisplayWidget::showsNothingBeforeTheFirstFrame()
{
    view->redrawImage();
    QVERIFY(label()->pixmap(Qt::ReturnByValue).isNull());
}

void TestDisplayWidget::looksAsTheWindowExpects()
{
    QVERIFY(label());
    QCOMPARE(label()->backgroundRole(), QPalette::Base);
    QCOMPARE(label()->sizePolicy().horizontalPolicy(), QSizePolicy::Ignored);
    QCOMPARE(label()->sizePolicy().verticalPolicy(), QSizePolicy::Ignored);
    QVERIFY(label()->hasScaledContents());
    QCOMPARE(view->backgroundRole(), QPalette::Dark);
}

void TestDisplayWidget::deletesItsLabel()
{
    const QObject *owner = view.get(); // as a DisplayWidget, being final, it would not be asked
    QByteArray classThen;
    connect(label(), &QObject::destroyed, this, [&] { classThen = owner->metaObject()->className(); });
    view.reset();
    QCOMPARE(classThen, QByteArray("DisplayWidget")); // before the scroll area takes it along
}

void TestDisplayWidget::aLabelThatWentBeforeIsNotDeletedAgain()
{
    delete view->takeWidget();
    QVERIFY(!label());
    view.reset();
}

void TestDisplayWidget::withoutHighlightingTheFrameIsShownAsItIs()
{
    addUserEntry(20, 15);
    selection->select(list->index(0, 0), QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    view->updateMagnifierPosition(QPoint(10, 10));
    view->setHighlight(false);
    view->setScale(2.0);
    const QImage frame = gradientFrame();
    const QImage picture = shownFor(frame);
    QCOMPARE(picture.size(), FrameSize * 2);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const int grey = frame.constScanLine(y / 2)[x / 2];
            QCOMPARE(picture.pixel(x, y), qRgb(grey, grey, grey));
        }
    }
}

void TestDisplayWidget::aFrameWithoutColourTableIsShownGrey()
{
    QImage frame(256, 1, QImage::Format_Indexed8);
    for (int x = 0; x < 256; ++x)
        frame.scanLine(0)[x] = static_cast<uchar>(x);
    QVERIFY(frame.colorTable().isEmpty());
    const QImage picture = shownFor(frame);
    for (int x = 0; x < 256; ++x)
        QCOMPARE(picture.pixel(x, 0), qRgb(x, x, x));
}

void TestDisplayWidget::aNullImageLeavesTheViewAsItWas()
{
    const QImage before = shownFor(gradientFrame());
    view->setImage(QImage());
    QCOMPARE(shown(), before);
}

void TestDisplayWidget::clearKeepsTheFrame()
{
    const QImage before = shownFor(gradientFrame());
    view->clear();
    QVERIFY(label()->pixmap(Qt::ReturnByValue).isNull());
    view->redrawImage();
    QCOMPARE(shown(), before);
}

void TestDisplayWidget::settersDoNotRedraw()
{
    const QImage before = shownFor(gradientFrame());
    addUserEntry(20, 15);
    selection->select(list->index(0, 0), QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    view->setScale(4.0);
    view->updateMagnifierPosition(QPoint(3, 3));
    view->setHighlight(false);
    view->setHighlight(true);
    view->setBufferSize(ImageInfo(1, 2, 8));
    view->setListModel(list.get());
    view->setSelectionModel(selection.get());
    QCOMPARE(shown(), before);
    view->redrawImage();
    QCOMPARE(shown().size(), FrameSize * 4);
}

void TestDisplayWidget::theFrameOutlivesItsBuffer()
{
    constexpr int Side = 32;
    auto buffer = std::make_unique<std::vector<uchar>>(Side * Side, uchar(77));
    const QImage before = shownFor(QImage(buffer->data(), Side, Side, QImage::Format_Indexed8));
    QCOMPARE(before.pixel(5, 5), qRgb(77, 77, 77));
    std::fill(buffer->begin(), buffer->end(), uchar(200));
    buffer.reset();
    view->redrawImage();
    QCOMPARE(shown(), before);
}

void TestDisplayWidget::aFrameLikeTheLastOutlivesItsBuffer()
{
    // Rows of 30 bytes, where Qt's own would be padded.
    std::vector<uchar> buffer(30 * 20, uchar(77));
    const QImage frame(buffer.data(), 30, 20, 30, QImage::Format_Indexed8);
    view->setImage(frame);
    std::fill(buffer.begin(), buffer.end(), uchar(99));
    const QImage before = shownFor(frame);
    QCOMPARE(before.pixel(29, 19), qRgb(99, 99, 99));
    std::fill(buffer.begin(), buffer.end(), uchar(200));
    view->redrawImage();
    QCOMPARE(shown(), before);
}

void TestDisplayWidget::a32BitFrameIsNeverDrawnInto()
{
    constexpr int Side = 32;
    constexpr QRgb Grey = qRgb(50, 50, 50);
    std::vector<QRgb> buffer(Side * Side, Grey);
    addUserEntry(16, 16);
    view->updateMagnifierPosition(QPoint(10, 10));
    const QImage frame(reinterpret_cast<uchar *>(buffer.data()), Side, Side, QImage::Format_RGB32);
    const QImage highlighted = shownFor(frame);
    QVERIFY(highlighted.pixel(20, 16) != Grey);
    QVERIFY(std::all_of(buffer.begin(), buffer.end(), [](QRgb pixel) { return pixel == Grey; }));

    view->redrawImage();
    QCOMPARE(shown(), highlighted);
    view->setHighlight(false);
    view->redrawImage();
    QCOMPARE(shown(), frame);
}

void TestDisplayWidget::aFrameLikeTheLastLeavesTheScrollBarsAlone()
{
    view->resize(100, 100);
    view->setImage(gradientFrame(QSize(400, 400)));
    view->show();
    QVERIFY(QTest::qWaitForWindowExposed(view.get()));
    QVERIFY(view->horizontalScrollBar()->isVisible() && view->verticalScrollBar()->isVisible());

    const auto *ofLabel = new PaintCount(view->widget());
    const auto *ofBar = new PaintCount(view->horizontalScrollBar());
    view->setImage(blackFrame(QSize(400, 400)));
    QTRY_COMPARE(ofLabel->count, 1);
    const int fromShowing = ofBar->count;
    view->setImage(gradientFrame(QSize(400, 400)));
    QTRY_COMPARE(ofLabel->count, 2);
    QCOMPARE(ofBar->count, fromShowing);
}

void TestDisplayWidget::anEntryAtTheOriginIsClippedNotMoved()
{
    addUserEntry(0, 0);
    const QImage atOrigin = shownFor(blackFrame());
    list->clearBadpixelList();
    addUserEntry(20, 15);
    const QImage inside = shownFor(blackFrame());
    const QRect lowerRight(20, 15, 20, 15);
    QCOMPARE(atOrigin.copy(0, 0, 20, 15), inside.copy(lowerRight));
    QCOMPARE(atOrigin.pixel(0, 0), qRgb(0, 0, 0));
    QVERIFY(qGreen(atOrigin.pixel(4, 0)) > 0);
}

void TestDisplayWidget::anEntryIsCircledWithinNinePixels()
{
    addUserEntry(20, 15);
    QImage expected = black32();
    QPainter painter(&expected);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::green);
    painter.drawEllipse(16, 11, 9, 9);
    painter.end();
    QCOMPARE(shownFor(blackFrame()), expected);
}

void TestDisplayWidget::everyEntryIsCircledInTheOrderOfTheList()
{
    BadpixelListModelPeer::append(*list,
                                  {{20, 15, Factory}, {24, 15, User}, {20, 19, Ignore}, {5, 20, User}});
    QImage expected = black32();
    QPainter painter(&expected);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::yellow);
    painter.drawEllipse(16, 11, 9, 9);
    painter.setPen(Qt::green);
    painter.drawEllipse(20, 11, 9, 9);
    painter.setPen(Qt::red);
    painter.drawEllipse(16, 15, 9, 9);
    painter.setPen(Qt::green);
    painter.drawEllipse(1, 16, 9, 9);
    painter.end();
    QCOMPARE(shownFor(blackFrame()), expected);
}

void TestDisplayWidget::entriesOutsideTheImageAreLeftOut()
{
    const QImage empty = shownFor(gradientFrame());
    addUserEntry(65535, 65535);
    addUserEntry(60, 15);
    addUserEntry(20, 60);
    selection->select(list->index(1, 0), QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    QCOMPARE(shownFor(gradientFrame()), empty);
}

void TestDisplayWidget::circlesAreColouredByClass_data()
{
    QTest::addColumn<int>("pixelclass");
    QTest::addColumn<bool>("red");
    QTest::addColumn<bool>("green");
    QTest::newRow("factory is yellow") << int(Factory) << true << true;
    QTest::newRow("user is green") << int(User) << false << true;
    QTest::newRow("ignore is red") << int(Ignore) << true << false;
    QTest::newRow("any other is red") << 77 << true << false;
}

void TestDisplayWidget::circlesAreColouredByClass()
{
    QFETCH(int, pixelclass);
    QFETCH(bool, red);
    QFETCH(bool, green);
    BadpixelListModelPeer::append(*list, {{20, 15, static_cast<std::uint8_t>(pixelclass)}});
    const QRgb pixel = shownFor(blackFrame()).pixel(24, 15);
    QCOMPARE(qRed(pixel) > 0, red);
    QCOMPARE(qGreen(pixel) > 0, green);
    QCOMPARE(qBlue(pixel), 0);
}

void TestDisplayWidget::circlesGrowWithTheZoom()
{
    addUserEntry(20, 15);
    const QImage plain = shownFor(blackFrame());
    view->setScale(4.0);
    view->redrawImage();
    QCOMPARE(shown(), plain.scaled(FrameSize * 4));
}

void TestDisplayWidget::theSelectedEntryGetsAThickBlueCircle()
{
    addUserEntry(5, 5);
    addUserEntry(20, 15);
    selection->select(list->index(1, 0), QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    QImage expected = black32();
    QPainter painter(&expected);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::green);
    painter.drawEllipse(1, 1, 9, 9);
    painter.drawEllipse(16, 11, 9, 9);
    painter.setPen(QPen(Qt::blue, 3));
    painter.drawEllipse(14, 9, 13, 13);
    painter.end();
    QCOMPARE(shownFor(blackFrame()), expected);
}

void TestDisplayWidget::aSelectionBeyondTheListIsLeftOut()
{
    QStandardItemModel longer(9, 3);
    QItemSelectionModel foreign(&longer);
    foreign.select(longer.index(8, 0), QItemSelectionModel::Select);
    view->setSelectionModel(&foreign);
    QCOMPARE(shownFor(blackFrame()), black32());
    view->setSelectionModel(nullptr);
}

void TestDisplayWidget::theCrossHairNeedsFullScale_data()
{
    QTest::addColumn<double>("scale");
    QTest::addColumn<bool>("drawn");
    QTest::newRow("to fit") << 0.0 << false;
    QTest::newRow("25 %") << 0.25 << false;
    QTest::newRow("50 %") << 0.5 << false;
    QTest::newRow("100 %") << 1.0 << true;
    QTest::newRow("200 %") << 2.0 << true;
}

void TestDisplayWidget::theCrossHairNeedsFullScale()
{
    QFETCH(double, scale);
    QFETCH(bool, drawn);
    view->setScale(scale);
    const QPoint position(24, 14);
    const QImage without = shownFor(blackFrame());
    // Fast scaling takes this column and this row at each of the scales.
    QVERIFY(shownFor(frameWithLine(QRect(position.x(), 0, 1, FrameSize.height()))) != without);
    QVERIFY(shownFor(frameWithLine(QRect(0, position.y(), FrameSize.width(), 1))) != without);
    view->updateMagnifierPosition(position);
    QCOMPARE(shownFor(blackFrame()) != without, drawn);
}

void TestDisplayWidget::theCrossHairIsFaint()
{
    view->updateMagnifierPosition(QPoint(8, 12));
    const QImage picture = shownFor(blackFrame());
    for (int y = 0; y < FrameSize.height(); ++y) {
        for (int x = 0; x < FrameSize.width(); ++x) {
            const QRgb pixel = picture.pixel(x, y);
            const bool crossed = x == 8 && y == 12;
            const bool onLine = x == 8 || y == 12;
            const int expected = crossed ? 130 : onLine ? 76 : 0; // 0.3 of 255, twice where the lines cross
            QVERIFY2(qAbs(qRed(pixel) - expected) <= 2, qPrintable(QString("%1, %2").arg(x).arg(y)));
            QCOMPARE(pixel & 0xffff, 0u);
        }
    }
}

void TestDisplayWidget::aCoordinateOfMinusOneMeansNoCrossHair()
{
    const QImage without = shownFor(blackFrame());
    for (const QPoint &position : {QPoint(-1, 12), QPoint(8, -1), QPoint(-1, -1)}) {
        view->updateMagnifierPosition(position);
        QCOMPARE(shownFor(blackFrame()), without);
    }
}

void TestDisplayWidget::circlesAreOpaqueBesideTheCrossHair()
{
    addUserEntry(25, 20);
    const QImage plain = shownFor(blackFrame());
    view->updateMagnifierPosition(QPoint(3, 3));
    const QRect circle(18, 13, 15, 15);
    QCOMPARE(shownFor(blackFrame()).copy(circle), plain.copy(circle));
}

void TestDisplayWidget::scaledSidesAreTruncated()
{
    view->setScale(0.5);
    QCOMPARE(shownFor(blackFrame(QSize(5, 7))).size(), QSize(2, 3));
    QCOMPARE(label()->size(), QSize(2, 3));
    view->setScale(4.0);
    QCOMPARE(shownFor(blackFrame(QSize(5, 7))).size(), QSize(20, 28));
    QCOMPARE(label()->size(), QSize(20, 28));
}

void TestDisplayWidget::toFitKeepsTheAspectRatio_data()
{
    QTest::addColumn<QSize>("frame");
    QTest::addColumn<QSize>("fitted");
    QTest::newRow("square") << QSize(100, 100) << QSize(200, 200);
    QTest::newRow("wide") << QSize(64, 16) << QSize(300, 75);
    QTest::newRow("larger") << QSize(1200, 400) << QSize(300, 100);
    QTest::newRow("tall") << QSize(50, 400) << QSize(25, 200);
}

void TestDisplayWidget::toFitKeepsTheAspectRatio()
{
    QFETCH(QSize, frame);
    QFETCH(QSize, fitted);
    view->setScale(0.0);
    QCOMPARE(shownFor(blackFrame(frame)).size(), fitted);
    QCOMPARE(label()->size(), fitted);
}

void TestDisplayWidget::aPictureTooLargeHalvesTheScale()
{
    // Rows of more than 2^31 bits cannot be made.
    QSignalSpy changed(view.get(), &DisplayWidget::scaleChanged);
    QImage wide(40000000, 1, QImage::Format_Indexed8);
    wide.fill(9);
    view->setHighlight(false);
    view->setScale(2.0);
    view->setImage(wide);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.first().first().toDouble(), 1.0);
    QCOMPARE(label()->pixmap(Qt::ReturnByValue).size(), wide.size());

    view->setImage(gradientFrame());
    QCOMPARE(shown().size(), FrameSize); // the halved scale stays
}

void TestDisplayWidget::aPictureStillTooLargeIsHalvedOnlyOnce()
{
    QSignalSpy changed(view.get(), &DisplayWidget::scaleChanged);
    view->setScale(1e12);
    view->setImage(gradientFrame());
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.first().first().toDouble(), 5e11);
    QVERIFY(label()->pixmap(Qt::ReturnByValue).isNull());
}

void TestDisplayWidget::aFitIntoNothingReportsScaleZero()
{
    QSignalSpy changed(view.get(), &DisplayWidget::scaleChanged);
    view->resize(2, 2);
    view->setScale(0.0);
    view->setImage(gradientFrame());
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.first().first().toDouble(), 0.0);
    QVERIFY(label()->pixmap(Qt::ReturnByValue).isNull());
}

void TestDisplayWidget::prepare(PlainView &plain, double scale, const QPoint &magnifierPosition)
{
    view->setScale(scale);
    view->updateMagnifierPosition(magnifierPosition);
    plain.list = list.get();
    plain.selection = selection.get();
    plain.highlight = true;
    plain.scale = scale;
    plain.magnifierPosition = magnifierPosition;
    plain.room = view->size() - QSize(2, 2);
}

/// Entries of all classes in and beside a frame of this size, many on the same places; one is selected.
void TestDisplayWidget::plantEntries(QRandomGenerator &random, int count, const QSize &size)
{
    selection->clear();
    list->clearBadpixelList();
    std::vector<Badpixel> entries;
    for (int i = 0; i < count; ++i) {
        const int x = random.bounded(size.width() + 20);
        const int y = random.bounded(size.height() + 20);
        entries.push_back({static_cast<std::uint16_t>(x), static_cast<std::uint16_t>(y),
                           static_cast<std::uint8_t>(random.bounded(4))});
    }
    BadpixelListModelPeer::append(*list, entries);
    if (count > 0) {
        selection->select(list->index(random.bounded(count), 0),
                          QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    }
}

void TestDisplayWidget::looksLikeThePlainView_data()
{
    QTest::addColumn<QImage::Format>("format");
    QTest::addColumn<double>("scale");
    QTest::addColumn<int>("largestSide");
    const std::vector<std::pair<const char *, QImage::Format>> formats{{"grey", QImage::Format_Indexed8},
                                                                       {"32 bits", QImage::Format_RGB32},
                                                                       {"alpha", QImage::Format_ARGB32}};
    for (const auto &format : formats) {
        for (const double scale : {0.0, 0.25, 0.37, 0.5, 1.0, 1.37, 2.0, 4.0})
            QTest::addRow("%s, scale %.2f", format.first, scale) << format.second << scale << 300;
    }
    QTest::newRow("tiny") << QImage::Format_Indexed8 << 1.0 << 12;
    QTest::newRow("tiny, enlarged") << QImage::Format_Indexed8 << 4.0 << 12;
    QTest::newRow("tiny, to fit") << QImage::Format_Indexed8 << 0.0 << 12;
    QTest::newRow("large, to fit") << QImage::Format_Indexed8 << 0.0 << 3000;
    QTest::newRow("large, half") << QImage::Format_Indexed8 << 0.5 << 3000;
}

/// Frames, lists, places and view sizes by the dice, each the same in every run.
void TestDisplayWidget::looksLikeThePlainView()
{
    QFETCH(QImage::Format, format);
    QFETCH(double, scale);
    QFETCH(int, largestSide);
    QRandomGenerator random(1);
    const int rounds = largestSide > 1000 ? 4 : 12;
    for (int round = 0; round < rounds; ++round) {
        const QSize size = randomSize(random, largestSide);
        view->resize(randomSize(random, 500) + QSize(2, 2));
        plantEntries(random, random.bounded(300), size);
        PlainView plain;
        prepare(plain, scale,
                QPoint(random.bounded(-1, size.width() + 3), random.bounded(size.height() + 3)));
        const QImage frame = noiseFrame(random, size, format);
        plain.setImage(frame);
        const QString where = difference(shownFor(frame), pictureIn(plain.shownIn()));
        QVERIFY2(where.isEmpty(), qPrintable(where + QStringLiteral(" of a frame of ") + inWords(size)));
    }
}

void TestDisplayWidget::looksLikeThePlainViewAtEveryPlaceOfASmallFrame()
{
    QRandomGenerator random(2);
    const QImage frame = noiseFrame(random, QSize(23, 19), QImage::Format_Indexed8);
    PlainView plain;
    prepare(plain, 1.0, QPoint(-1, -1));
    view->setImage(frame);
    plain.setImage(frame);
    const auto width = static_cast<std::uint16_t>(frame.width() + 10);
    const auto height = static_cast<std::uint16_t>(frame.height() + 10);
    for (std::uint16_t y = 0; y < height; ++y) {
        for (std::uint16_t x = 0; x < width; ++x) {
            list->clearBadpixelList();
            addUserEntry(x, y);
            selection->select(list->index(0, 0), QItemSelectionModel::ClearAndSelect);
            view->redrawImage();
            plain.redrawImage();
            const QString where = difference(shown(), pictureIn(plain.shownIn()));
            QVERIFY2(where.isEmpty(), qPrintable(QStringLiteral("%1, %2: ").arg(x).arg(y) + where));
        }
    }
}

void TestDisplayWidget::looksLikeThePlainViewAfterEveryChange()
{
    QRandomGenerator random(3);
    const QSize sizes[] = {QSize(90, 70), QSize(90, 70), QSize(70, 90), QSize(131, 17)};
    const QImage::Format formats[] = {QImage::Format_Indexed8, QImage::Format_RGB32, QImage::Format_Mono};
    const double scales[] = {0.0, 0.5, 1.0, 2.0};
    PlainView plain;
    for (int round = 0; round < 150; ++round) {
        prepare(plain, scales[random.bounded(4)], QPoint(random.bounded(-1, 90), random.bounded(-1, 90)));
        plantEntries(random, random.bounded(40), sizes[random.bounded(4)]);
        plain.highlight = random.bounded(4) > 0;
        view->setHighlight(plain.highlight);
        if (round == 0 || random.bounded(3) > 0) {
            const QImage frame = noiseFrame(random, sizes[random.bounded(4)], formats[random.bounded(3)]);
            view->setImage(frame);
            plain.setImage(frame);
        } else {
            view->redrawImage();
            plain.redrawImage();
        }
        const QString where = difference(shown(), pictureIn(plain.shownIn()));
        QVERIFY2(where.isEmpty(), qPrintable(QStringLiteral("round %1: ").arg(round) + where));
        if (random.bounded(10) == 0)
            view->clear();
    }
}

void TestDisplayWidget::aPictureThatSomebodyKeepsIsNotDrawnOver()
{
    view->setImage(gradientFrame());
    const QPixmap kept = label()->pixmap(Qt::ReturnByValue);
    const QImage before = kept.toImage().copy();
    view->setImage(blackFrame());
    QCOMPARE(shown(), black32());
    QCOMPARE(kept.toImage(), before);
}

void TestDisplayWidget::aPictureWiderThanQtScalesShowsTheFrameUpToItsEnd()
{
    QImage frame(9000, 2, QImage::Format_Indexed8);
    frame.fill(30);
    frame.scanLine(1)[8999] = 200;
    view->setScale(4.0);
    const QImage picture = shownFor(frame);
    QCOMPARE(picture.size(), QSize(36000, 8));
    QCOMPARE(picture.pixel(35995, 7), qRgb(30, 30, 30));
    QCOMPARE(picture.pixel(35996, 7), qRgb(200, 200, 200));
    QCOMPARE(picture.pixel(35999, 7), qRgb(200, 200, 200));
    QCOMPARE(picture.pixel(35999, 3), qRgb(30, 30, 30));
}

void TestDisplayWidget::aFrameTooWideFor32BitsLeavesTheViewAsItWas()
{
    const QImage before = shownFor(gradientFrame());
    QSignalSpy changed(view.get(), &DisplayWidget::scaleChanged);
    QImage wide(70000000, 1, QImage::Format_Indexed8);
    wide.fill(9);
    QVERIFY(wide.convertToFormat(QImage::Format_RGB32).isNull());
    for (const double scale : {1.0, 0.25, 0.0}) {
        view->setScale(scale);
        view->setImage(wide);
        QCOMPARE(shown(), before);
    }
    QVERIFY(changed.isEmpty());
}

void TestDisplayWidget::aClickAddressesThePixelUnderIt_data()
{
    QTest::addColumn<double>("scale");
    QTest::addColumn<QPoint>("pixel");
    QTest::newRow("200 %") << 2.0 << QPoint(6, 3);
    QTest::newRow("100 %") << 1.0 << QPoint(13, 7);
    QTest::newRow("25 %") << 0.25 << QPoint(52, 28);
}

void TestDisplayWidget::aClickAddressesThePixelUnderIt()
{
    QFETCH(double, scale);
    QFETCH(QPoint, pixel);
    view->setScale(scale);
    view->setImage(blackFrame(QSize(200, 100)));
    QSignalSpy clicked(view.get(), &DisplayWidget::positionClicked);
    clickLabel(QPoint(13, 7));
    QCOMPARE(clickedPixel(clicked), pixel);
}

void TestDisplayWidget::aClickIntoAScrolledViewAddressesThePixelUnderIt()
{
    showLargeFrame();
    QSignalSpy clicked(view.get(), &DisplayWidget::positionClicked);
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, QPoint(20, 30));
    QCOMPARE(clickedPixel(clicked), QPoint(120, 110));
}

void TestDisplayWidget::aClickSixPixelsBesideAnEntrySelectsItsRow()
{
    addUserEntry(2, 2);
    addUserEntry(20, 15);
    view->setImage(blackFrame());
    selection->select(list->index(0, 0), QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    QSignalSpy clicked(view.get(), &DisplayWidget::positionClicked);
    clickLabel(QPoint(14, 15));
    QVERIFY(clicked.isEmpty());
    QCOMPARE(selection->selectedRows().count(), 1);
    QCOMPARE(selection->selectedRows().first().row(), 1);
    QCOMPARE(selection->selectedIndexes().count(), list->columnCount());
}

void TestDisplayWidget::aClickSevenPixelsBesideAnEntryClearsTheSelectionAndReports()
{
    addUserEntry(20, 15);
    view->setImage(blackFrame());
    selection->select(list->index(0, 0), QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    QSignalSpy clicked(view.get(), &DisplayWidget::positionClicked);
    clickLabel(QPoint(13, 15));
    QCOMPARE(clickedPixel(clicked), QPoint(13, 15));
    QVERIFY(!selection->hasSelection());
}

void TestDisplayWidget::aClickTakesTheFirstOfSeveralEntries()
{
    addUserEntry(24, 15);
    addUserEntry(20, 15);
    view->setImage(blackFrame());
    clickLabel(QPoint(20, 15));
    QCOMPARE(selection->selectedRows().value(0).row(), 0);
}

void TestDisplayWidget::aClickWithoutListAndSelectionReportsThePixel()
{
    view->setListModel(nullptr);
    view->setSelectionModel(nullptr);
    view->setImage(blackFrame());
    QCOMPARE(shown(), black32());
    QSignalSpy clicked(view.get(), &DisplayWidget::positionClicked);
    clickLabel(QPoint(4, 5));
    QCOMPARE(clickedPixel(clicked), QPoint(4, 5));

    addUserEntry(4, 5);
    view->setListModel(list.get());
    clickLabel(QPoint(4, 5));
    QCOMPARE(clicked.count(), 1); // found, though there is nothing to select it in
}

void TestDisplayWidget::aClickIntoAFittedViewGoesThroughThePicturesSize()
{
    view->setScale(0.0);
    view->setImage(blackFrame(QSize(64, 16))); // shown as 300 x 75
    QSignalSpy clicked(view.get(), &DisplayWidget::positionClicked);
    clickLabel(QPoint(150, 40));
    QCOMPARE(clickedPixel(clicked), QPoint(32, 8));
    clicked.clear();
    clickLabel(QPoint(299, 74));
    QCOMPARE(clickedPixel(clicked), QPoint(63, 15));
}

void TestDisplayWidget::aClickIntoAFittedRowOfPixelsReachesItsEnd()
{
    view->setScale(0.0);
    QCOMPARE(shownFor(blackFrame(QSize(1000, 1))).size(), QSize(300, 1));
    QSignalSpy clicked(view.get(), &DisplayWidget::positionClicked);
    clickLabel(QPoint(299, 0));
    QCOMPARE(clickedPixel(clicked), QPoint(996, 0));
}

void TestDisplayWidget::aClickIntoAFittedViewWithoutPictureAddressesNothing_data()
{
    QTest::addColumn<Preparation>("prepare");
    QTest::newRow("before the first frame") << Preparation([](DisplayWidget &) {});
    QTest::newRow("after clear()") << Preparation([](DisplayWidget &widget) {
        widget.setImage(gradientFrame());
        widget.clear();
    });
    QTest::newRow("after a fit into nothing") << Preparation([](DisplayWidget &widget) {
        widget.resize(2, 2);
        widget.setImage(gradientFrame());
        widget.resize(302, 202);
    });
}

void TestDisplayWidget::aClickIntoAFittedViewWithoutPictureAddressesNothing()
{
    QFETCH(Preparation, prepare);
    addUserEntry(300, 300);
    selection->select(list->index(0, 0), QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    view->setScale(0.0);
    prepare(*view);
    QSignalSpy clicked(view.get(), &DisplayWidget::positionClicked);
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, QPoint(20, 30));
    QVERIFY(clicked.isEmpty());
    QVERIFY(selection->hasSelection());
}

void TestDisplayWidget::otherButtonsDoNothing()
{
    addUserEntry(20, 15);
    view->setImage(blackFrame());
    QSignalSpy clicked(view.get(), &DisplayWidget::positionClicked);
    send(QEvent::MouseButtonPress, QPoint(20, 15), Qt::MiddleButton);
    send(QEvent::MouseButtonPress, QPoint(2, 2), Qt::MiddleButton);
    QVERIFY(clicked.isEmpty());
    QVERIFY(!selection->hasSelection());
}

void TestDisplayWidget::theRightButtonComesFirst()
{
    addUserEntry(20, 15);
    view->setImage(blackFrame());
    QSignalSpy clicked(view.get(), &DisplayWidget::positionClicked);
    send(QEvent::MouseButtonPress, QPoint(20, 15), Qt::LeftButton | Qt::RightButton);
    send(QEvent::MouseButtonPress, QPoint(2, 2), Qt::LeftButton | Qt::RightButton);
    QVERIFY(clicked.isEmpty());
    QVERIFY(!selection->hasSelection());
}

void TestDisplayWidget::aRightDragScrolls()
{
    showLargeFrame();
    send(QEvent::MouseButtonPress, QPoint(50, 50), Qt::RightButton);
    send(QEvent::MouseMove, QPoint(60, 50), Qt::RightButton);
    QCOMPARE(view->horizontalScrollBar()->value(), 90);
    QCOMPARE(view->verticalScrollBar()->value(), 80);
    send(QEvent::MouseMove, QPoint(55, 43), Qt::RightButton | Qt::LeftButton);
    QCOMPARE(view->horizontalScrollBar()->value(), 95);
    QCOMPARE(view->verticalScrollBar()->value(), 87);
}

void TestDisplayWidget::movesWithoutTheRightButtonAreIgnored()
{
    showLargeFrame();
    send(QEvent::MouseButtonPress, QPoint(50, 50), Qt::RightButton);
    send(QEvent::MouseMove, QPoint(70, 70), Qt::NoButton);
    send(QEvent::MouseMove, QPoint(80, 80), Qt::LeftButton);
    QCOMPARE(view->horizontalScrollBar()->value(), 100);
    QCOMPARE(view->verticalScrollBar()->value(), 80);
    send(QEvent::MouseMove, QPoint(51, 50), Qt::RightButton);
    QCOMPARE(view->horizontalScrollBar()->value(), 99); // the drag still starts where it did
}

void TestDisplayWidget::keysTravelOn()
{
    showLargeFrame();
    QKeyEvent down(QEvent::KeyPress, Qt::Key_Down, Qt::NoModifier);
    QCoreApplication::sendEvent(view.get(), &down);
    QVERIFY(!down.isAccepted());
    QCOMPARE(view->verticalScrollBar()->value(), 80);
}

QTEST_MAIN(TestDisplayWidget)
#include "tst_displaywidget.moc"
