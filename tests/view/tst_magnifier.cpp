// SPDX-License-Identifier: MIT
// Tests the magnifier on the pixels that it shows and reports, and by real mouse and key events.
#include "magnifier.h"

#include <QKeyEvent>
#include <QSignalSpy>
#include <QtTest>

#include <algorithm>
#include <limits>
#include <memory>
#include <vector>

namespace {

const QSize FrameSize(64, 48);
constexpr QRgb Green = qRgb(0, 255, 0);
constexpr QRgb Black = qRgb(0, 0, 0);
constexpr int Most = std::numeric_limits<int>::max();
constexpr int Least = std::numeric_limits<int>::min();

int greyAt(int x, int y)
{
    return 1 + (x * 3 + y * 67) % 250;
}

/// An 8-bit frame without a colour table, as the camera makes them; neighbours differ and none is black.
QImage gradientFrame(const QSize &size = FrameSize)
{
    QImage frame(size, QImage::Format_Indexed8);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            frame.scanLine(y)[x] = static_cast<uchar>(greyAt(x, y));
    }
    return frame;
}

QImage greyFrame(int grey)
{
    QImage frame(FrameSize, QImage::Format_Indexed8);
    frame.fill(static_cast<uint>(grey));
    return frame;
}

QRgb frameColour(int x, int y)
{
    if (!QRect(QPoint(0, 0), FrameSize).contains(x, y))
        return Black;
    const int grey = greyAt(x, y);
    return qRgb(grey, grey, grey);
}

/// The gradient frame's pixels round the focus as squares, pixel by pixel.
QImage squares(const QPoint &focus, int columns, int rows, int zoom)
{
    QImage picture(columns * zoom, rows * zoom, QImage::Format_RGB32);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            picture.setPixel(
                x, y, frameColour(focus.x() - columns / 2 + x / zoom, focus.y() - rows / 2 + y / zoom));
    }
    return picture;
}

/// Colours a straight run of pixels, both ends included; what falls beside the picture is left out.
void colourRun(QImage &picture, const QPoint &from, const QPoint &to)
{
    for (int y = from.y(); y <= to.y(); ++y) {
        for (int x = from.x(); x <= to.x(); ++x) {
            if (picture.valid(x, y))
                picture.setPixel(x, y, Green);
        }
    }
}

/// The frame lies round the middle square without covering it; the ticks reach 16 pixels further.
QImage marked(QImage picture, int zoom)
{
    const QPoint corner((picture.width() / zoom / 2) * zoom, (picture.height() / zoom / 2) * zoom);
    const QRect square(corner, QSize(zoom, zoom));
    const QRect frame = square.adjusted(-1, -1, 1, 1);
    colourRun(picture, frame.topLeft(), frame.topRight());
    colourRun(picture, frame.bottomLeft(), frame.bottomRight());
    colourRun(picture, frame.topLeft(), frame.bottomLeft());
    colourRun(picture, frame.topRight(), frame.bottomRight());
    const int x = picture.width() / 2;
    const int y = picture.height() / 2;
    colourRun(picture, QPoint(x, frame.top() - 16), QPoint(x, frame.top()));
    colourRun(picture, QPoint(x, frame.bottom()), QPoint(x, frame.bottom() + 16));
    colourRun(picture, QPoint(frame.left() - 16, y), QPoint(frame.left(), y));
    colourRun(picture, QPoint(frame.right(), y), QPoint(frame.right() + 16, y));
    return picture;
}

/// The steps of a click, counted zoom by zoom.
int countedSteps(int offset, int zoom)
{
    const int half = zoom / 2;
    int steps = 0;
    if (offset >= 1) {
        for (; offset > half; offset -= zoom)
            ++steps;
        return steps;
    }
    for (int distance = half - offset; distance > zoom; distance -= zoom)
        --steps;
    return steps;
}

/// A parent that counts the keys which its child leaves to it.
class ParentWidget : public QWidget
{
public:
    int keys = 0;

protected:
    void keyPressEvent(QKeyEvent *) override { ++keys; }
};

} // namespace

class TestMagnifier : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void looksAsTheDockExpects();
    void showsNothingBeforeTheFirstFrame();
    void aNullImageEmptiesTheLabel();
    void clearKeepsFrameAndFocus();
    void theFrameOutlivesItsBuffer();
    void a32BitFrameIsNeitherSharedNorDrawnInto();
    void everySetterRedraws();

    void theLabelsSizeGivesAnOddNumberOfPixels_data();
    void theLabelsSizeGivesAnOddNumberOfPixels();
    void everyPixelIsASquareAndTheFocusIsFramed_data();
    void everyPixelIsASquareAndTheFocusIsFramed();
    void aPieceBelow21PixelsIsNotMarkedAndTellsNothing_data();
    void aPieceBelow21PixelsIsNotMarkedAndTellsNothing();
    void aFocusFarOutsideShowsBlack_data();
    void aFocusFarOutsideShowsBlack();
    void aLabelTooLargeForAnImageStaysEmpty();
    void zoomsBelowOneCountAsOne();
    void aHugeZoomShowsNothing();

    void theParityOfTheFocusGivesTheBayerColour_data();
    void theParityOfTheFocusGivesTheBayerColour();
    void theValueIsTheFocusPixelsGrey();
    void theValueIsTheLowByteOfAColourPixel();
    void theValueOutsideTheFrameIsZero_data();
    void theValueOutsideTheFrameIsZero();

    void arrowKeysAskForTheNeighbour_data();
    void arrowKeysAskForTheNeighbour();
    void leftAtTheOriginAsksForMinusOne();
    void otherKeysTravelOn();
    void theMagnifierDoesNotMoveItself();
    void aClickGivesTheKeyboardFocus();

    void aClickStepsByWholeSquares_data();
    void aClickStepsByWholeSquares();
    void stepsAreCountedZoomByZoom();
    void aClickOnTheMiddleSquareStillReports();
    void aClickOnASquareAsksForItsPixel();
    void onlyTheLeftButtonActs();
    void requestsStayWithinAnInt_data();
    void requestsStayWithinAnInt();

private:
    QImage shown() const;
    QImage shownFor(QImage frame);
    void clickBesideCentre(int dx, int dy);

    std::unique_ptr<Magnifier> magnifier;
};

void TestMagnifier::init()
{
    magnifier = std::make_unique<Magnifier>();
    magnifier->resize(200, 100);
}

void TestMagnifier::cleanup()
{
    magnifier.reset();
}

QImage TestMagnifier::shown() const
{
    return magnifier->pixmap(Qt::ReturnByValue).toImage().convertToFormat(QImage::Format_RGB32);
}

QImage TestMagnifier::shownFor(QImage frame)
{
    magnifier->setImage(frame);
    return shown();
}

void TestMagnifier::clickBesideCentre(int dx, int dy)
{
    const QPoint centre(magnifier->width() / 2, magnifier->height() / 2);
    QTest::mouseClick(magnifier.get(), Qt::LeftButton, {}, centre + QPoint(dx, dy));
}

void TestMagnifier::looksAsTheDockExpects()
{
    QCOMPARE(magnifier->zoom(), 20);
    QCOMPARE(magnifier->backgroundRole(), QPalette::Base);
    QCOMPARE(magnifier->sizePolicy().horizontalPolicy(), QSizePolicy::Ignored);
    QCOMPARE(magnifier->sizePolicy().verticalPolicy(), QSizePolicy::Ignored);
    QVERIFY(!magnifier->hasScaledContents());
    QCOMPARE(magnifier->focusPolicy(), Qt::WheelFocus);
    QCOMPARE(magnifier->alignment(), Qt::AlignHCenter | Qt::AlignVCenter);
}

void TestMagnifier::showsNothingBeforeTheFirstFrame()
{
    QSignalSpy told(magnifier.get(), &Magnifier::pixelInfoChanged);
    magnifier->setText("left over");
    magnifier->redrawImage();
    magnifier->setPosition(QPoint(3, 4));
    magnifier->setZoom(30);
    QVERIFY(shown().isNull());
    QVERIFY(magnifier->text().isEmpty());
    QCOMPARE(told.count(), 0);
}

void TestMagnifier::aNullImageEmptiesTheLabel()
{
    QVERIFY(!shownFor(gradientFrame()).isNull());
    QVERIFY(shownFor(QImage()).isNull());
    magnifier->redrawImage();
    QVERIFY(shown().isNull());
}

void TestMagnifier::clearKeepsFrameAndFocus()
{
    magnifier->setPosition(QPoint(20, 10));
    const QImage before = shownFor(gradientFrame());
    magnifier->clear();
    QVERIFY(shown().isNull());
    magnifier->redrawImage();
    QCOMPARE(shown(), before);
}

void TestMagnifier::theFrameOutlivesItsBuffer()
{
    constexpr int Side = 32;
    auto buffer = std::make_unique<std::vector<uchar>>(Side * Side, uchar(77));
    const QImage before = shownFor(QImage(buffer->data(), Side, Side, QImage::Format_Indexed8));
    QCOMPARE(before.pixel(before.rect().bottomRight()), qRgb(77, 77, 77));
    std::fill(buffer->begin(), buffer->end(), uchar(200));
    buffer.reset();
    magnifier->redrawImage();
    QCOMPARE(shown(), before);
}

void TestMagnifier::a32BitFrameIsNeitherSharedNorDrawnInto()
{
    constexpr int Side = 32;
    constexpr QRgb Grey = qRgb(50, 50, 50);
    auto buffer = std::make_unique<std::vector<QRgb>>(Side * Side, Grey);
    const QImage before =
        shownFor(QImage(reinterpret_cast<uchar *>(buffer->data()), Side, Side, QImage::Format_RGB32));
    QVERIFY(std::all_of(buffer->begin(), buffer->end(), [](QRgb pixel) { return pixel == Grey; }));
    QCOMPARE(before.pixel(before.rect().bottomRight()), Grey);
    std::fill(buffer->begin(), buffer->end(), qRgb(200, 200, 200));
    buffer.reset();
    magnifier->redrawImage();
    QCOMPARE(shown(), before);
}

void TestMagnifier::everySetterRedraws()
{
    const QImage first = shownFor(gradientFrame());
    magnifier->setPosition(QPoint(30, 20));
    const QImage moved = shown();
    QVERIFY(moved != first);
    magnifier->setZoom(40);
    const QImage enlarged = shown();
    QVERIFY(enlarged.size() != moved.size());
    QVERIFY(shownFor(greyFrame(9)) != enlarged);
}

void TestMagnifier::theLabelsSizeGivesAnOddNumberOfPixels_data()
{
    QTest::addColumn<QSize>("label");
    QTest::addColumn<int>("zoom");
    QTest::addColumn<QSize>("piece");
    QTest::newRow("even and odd number") << QSize(200, 100) << 20 << QSize(13, 7);
    QTest::newRow("smallest zoom") << QSize(100, 100) << 5 << QSize(23, 23);
    QTest::newRow("largest zoom") << QSize(260, 420) << 100 << QSize(5, 7);
    QTest::newRow("just below a whole pixel") << QSize(59, 79) << 20 << QSize(5, 5);
    QTest::newRow("exactly whole pixels") << QSize(60, 80) << 20 << QSize(5, 7);
    QTest::newRow("smaller than a zoomed pixel") << QSize(99, 1) << 100 << QSize(3, 3);
    QTest::newRow("no size at all") << QSize(0, 0) << 100 << QSize(3, 3);
    QTest::newRow("larger than the frame") << QSize(1600, 1200) << 5 << QSize(323, 243);
    QTest::newRow("a strip") << QSize(4000, 1) << 5 << QSize(803, 3);
}

void TestMagnifier::theLabelsSizeGivesAnOddNumberOfPixels()
{
    QFETCH(QSize, label);
    QFETCH(int, zoom);
    QFETCH(QSize, piece);
    magnifier->resize(label);
    magnifier->setZoom(zoom);
    QCOMPARE(shownFor(gradientFrame()).size(), piece * zoom);
}

void TestMagnifier::everyPixelIsASquareAndTheFocusIsFramed_data()
{
    QTest::addColumn<QSize>("label");
    QTest::addColumn<int>("zoom");
    QTest::addColumn<QPoint>("focus");
    QTest::addColumn<QSize>("piece");
    QTest::newRow("inside") << QSize(200, 100) << 20 << QPoint(30, 20) << QSize(13, 7);
    QTest::newRow("odd zoom") << QSize(100, 100) << 5 << QPoint(30, 20) << QSize(23, 23);
    QTest::newRow("odd zoom, ticks cut") << QSize(1, 1) << 7 << QPoint(30, 20) << QSize(3, 3);
    QTest::newRow("largest zoom") << QSize(160, 120) << 100 << QPoint(31, 21) << QSize(3, 3);
    QTest::newRow("top left corner") << QSize(200, 100) << 20 << QPoint(0, 0) << QSize(13, 7);
    QTest::newRow("bottom right corner") << QSize(200, 100) << 20 << QPoint(63, 47) << QSize(13, 7);
    QTest::newRow("just outside, top left") << QSize(200, 100) << 20 << QPoint(-1, -1) << QSize(13, 7);
    QTest::newRow("just outside, bottom right") << QSize(200, 100) << 20 << QPoint(64, 48) << QSize(13, 7);
    QTest::newRow("last column in sight") << QSize(200, 100) << 20 << QPoint(69, 20) << QSize(13, 7);
    QTest::newRow("first column in sight") << QSize(200, 100) << 20 << QPoint(-6, 20) << QSize(13, 7);
    QTest::newRow("whole frame in sight") << QSize(800, 600) << 5 << QPoint(30, 20) << QSize(163, 123);
}

void TestMagnifier::everyPixelIsASquareAndTheFocusIsFramed()
{
    QFETCH(QSize, label);
    QFETCH(int, zoom);
    QFETCH(QPoint, focus);
    QFETCH(QSize, piece);
    magnifier->resize(label);
    magnifier->setZoom(zoom);
    magnifier->setPosition(focus);
    const QImage picture = shownFor(gradientFrame());
    QCOMPARE(picture, marked(squares(focus, piece.width(), piece.height(), zoom), zoom));
}

void TestMagnifier::aPieceBelow21PixelsIsNotMarkedAndTellsNothing_data()
{
    QTest::addColumn<QSize>("label");
    QTest::addColumn<int>("zoom");
    QTest::addColumn<QSize>("piece");
    QTest::addColumn<bool>("isMarked");
    QTest::newRow("15 x 15") << QSize(9, 9) << 5 << QSize(3, 3) << false;
    QTest::newRow("18 x 18") << QSize(1, 1) << 6 << QSize(3, 3) << false;
    QTest::newRow("21 x 21") << QSize(1, 1) << 7 << QSize(3, 3) << true;
    QTest::newRow("too low") << QSize(100, 9) << 5 << QSize(23, 3) << false;
    QTest::newRow("too narrow") << QSize(9, 100) << 5 << QSize(3, 23) << false;
    QTest::newRow("25 x 25") << QSize(10, 10) << 5 << QSize(5, 5) << true;
}

void TestMagnifier::aPieceBelow21PixelsIsNotMarkedAndTellsNothing()
{
    QFETCH(QSize, label);
    QFETCH(int, zoom);
    QFETCH(QSize, piece);
    QFETCH(bool, isMarked);
    const QPoint focus(30, 20);
    magnifier->resize(label);
    magnifier->setZoom(zoom);
    magnifier->setPosition(focus);
    QSignalSpy told(magnifier.get(), &Magnifier::pixelInfoChanged);
    const QImage picture = shownFor(gradientFrame());
    const QImage plain = squares(focus, piece.width(), piece.height(), zoom);
    QCOMPARE(picture, isMarked ? marked(plain, zoom) : plain);
    QCOMPARE(told.count(), isMarked ? 1 : 0);
}

void TestMagnifier::aFocusFarOutsideShowsBlack_data()
{
    QTest::addColumn<QPoint>("focus");
    QTest::newRow("a piece to the left") << QPoint(-7, 20);
    QTest::newRow("a piece to the right") << QPoint(70, 20);
    QTest::newRow("above") << QPoint(30, -4);
    QTest::newRow("below") << QPoint(30, 51);
    QTest::newRow("greatest") << QPoint(Most, Most);
    QTest::newRow("smallest") << QPoint(Least, Least);
    QTest::newRow("mixed") << QPoint(Least, Most);
}

void TestMagnifier::aFocusFarOutsideShowsBlack()
{
    QFETCH(QPoint, focus);
    magnifier->setPosition(focus);
    QImage black(260, 140, QImage::Format_RGB32);
    black.fill(Black);
    QCOMPARE(shownFor(gradientFrame()), marked(black, 20));
}

void TestMagnifier::aLabelTooLargeForAnImageStaysEmpty()
{
    QSignalSpy told(magnifier.get(), &Magnifier::pixelInfoChanged);
    for (const QSize &label : {QSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX), QSize(30000, 30000)}) {
        magnifier->resize(label);
        for (int zoom : {5, 100}) {
            magnifier->setZoom(zoom);
            QVERIFY(shownFor(gradientFrame()).isNull());
        }
    }
    QCOMPARE(told.count(), 0);
    magnifier->resize(200, 100);
    magnifier->redrawImage();
    QVERIFY(!shown().isNull());
}

void TestMagnifier::zoomsBelowOneCountAsOne()
{
    for (int zoom : {1, 0, -1, -20, Least}) {
        magnifier->setZoom(zoom);
        QCOMPARE(magnifier->zoom(), 1);
        QCOMPARE(shownFor(gradientFrame()).size(), QSize(203, 103));
    }
}

void TestMagnifier::aHugeZoomShowsNothing()
{
    magnifier->setZoom(Most);
    QVERIFY(shownFor(gradientFrame()).isNull());
    QSignalSpy asked(magnifier.get(), &Magnifier::changePosition);
    clickBesideCentre(90, -40);
    QCOMPARE(asked.takeFirst().first().toPoint(), QPoint(0, 0));
}

void TestMagnifier::theParityOfTheFocusGivesTheBayerColour_data()
{
    QTest::addColumn<QPoint>("focus");
    QTest::addColumn<QString>("colour");
    QTest::newRow("0, 0") << QPoint(0, 0) << "R";
    QTest::newRow("1, 0") << QPoint(1, 0) << "G";
    QTest::newRow("0, 1") << QPoint(0, 1) << "G";
    QTest::newRow("1, 1") << QPoint(1, 1) << "B";
    QTest::newRow("62, 46") << QPoint(62, 46) << "R";
    QTest::newRow("63, 47") << QPoint(63, 47) << "B";
    QTest::newRow("-1, 0") << QPoint(-1, 0) << "G";
    QTest::newRow("1, -1") << QPoint(1, -1) << "B";
    QTest::newRow("-1, -1") << QPoint(-1, -1) << "B";
    QTest::newRow("-2, -1") << QPoint(-2, -1) << "G";
    QTest::newRow("-2, -4") << QPoint(-2, -4) << "R";
}

void TestMagnifier::theParityOfTheFocusGivesTheBayerColour()
{
    QFETCH(QPoint, focus);
    QFETCH(QString, colour);
    shownFor(gradientFrame());
    QSignalSpy told(magnifier.get(), &Magnifier::pixelInfoChanged);
    magnifier->setPosition(focus);
    QCOMPARE(told.count(), 1);
    QCOMPARE(told.first().first().toString(), colour);
}

void TestMagnifier::theValueIsTheFocusPixelsGrey()
{
    shownFor(gradientFrame());
    QSignalSpy told(magnifier.get(), &Magnifier::pixelInfoChanged);
    for (const QPoint &focus : {QPoint(0, 0), QPoint(63, 0), QPoint(0, 47), QPoint(63, 47), QPoint(31, 5)}) {
        magnifier->setPosition(focus);
        QCOMPARE(told.takeFirst().last().toInt(), greyAt(focus.x(), focus.y()));
    }
    for (int grey : {0, 1, 255}) {
        shownFor(greyFrame(grey));
        QCOMPARE(told.takeFirst().last().toInt(), grey);
    }
}

void TestMagnifier::theValueIsTheLowByteOfAColourPixel()
{
    QSignalSpy told(magnifier.get(), &Magnifier::pixelInfoChanged);
    QImage frame(FrameSize, QImage::Format_RGB32);
    frame.fill(qRgb(10, 20, 30));
    shownFor(frame);
    QCOMPARE(told.takeFirst().last().toInt(), 30);
}

void TestMagnifier::theValueOutsideTheFrameIsZero_data()
{
    QTest::addColumn<QPoint>("focus");
    QTest::newRow("left") << QPoint(-1, 5);
    QTest::newRow("above") << QPoint(5, -1);
    QTest::newRow("right") << QPoint(64, 5);
    QTest::newRow("below") << QPoint(5, 48);
    QTest::newRow("far") << QPoint(Most, Least);
}

void TestMagnifier::theValueOutsideTheFrameIsZero()
{
    QFETCH(QPoint, focus);
    shownFor(greyFrame(200));
    QSignalSpy told(magnifier.get(), &Magnifier::pixelInfoChanged);
    magnifier->setPosition(focus);
    QCOMPARE(told.count(), 1);
    QCOMPARE(told.first().last().toInt(), 0);
}

void TestMagnifier::arrowKeysAskForTheNeighbour_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<QPoint>("asked");
    QTest::newRow("left") << int(Qt::Key_Left) << QPoint(29, 20);
    QTest::newRow("up") << int(Qt::Key_Up) << QPoint(30, 19);
    QTest::newRow("right") << int(Qt::Key_Right) << QPoint(31, 20);
    QTest::newRow("down") << int(Qt::Key_Down) << QPoint(30, 21);
}

void TestMagnifier::arrowKeysAskForTheNeighbour()
{
    QFETCH(int, key);
    QFETCH(QPoint, asked);
    magnifier->setPosition(QPoint(30, 20));
    QSignalSpy spy(magnifier.get(), &Magnifier::changePosition);
    QTest::keyClick(magnifier.get(), static_cast<Qt::Key>(key));
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.first().first().toPoint(), asked);
}

void TestMagnifier::leftAtTheOriginAsksForMinusOne()
{
    QSignalSpy spy(magnifier.get(), &Magnifier::changePosition);
    QTest::keyClick(magnifier.get(), Qt::Key_Left);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.first().first().toPoint(), QPoint(-1, 0));
}

void TestMagnifier::otherKeysTravelOn()
{
    ParentWidget parent;
    auto *child = new Magnifier(&parent);
    QSignalSpy asked(child, &Magnifier::changePosition);
    QTest::keyClick(child, Qt::Key_A);
    QTest::keyClick(child, Qt::Key_PageUp);
    QCOMPARE(parent.keys, 2);
    QCOMPARE(asked.count(), 0);
    QTest::keyClick(child, Qt::Key_Up);
    QCOMPARE(parent.keys, 2);
    QCOMPARE(asked.count(), 1);
}

void TestMagnifier::theMagnifierDoesNotMoveItself()
{
    magnifier->setPosition(QPoint(30, 20));
    const QImage before = shownFor(gradientFrame());
    QTest::keyClick(magnifier.get(), Qt::Key_Down);
    clickBesideCentre(60, 20);
    magnifier->redrawImage();
    QCOMPARE(shown(), before);
    QSignalSpy asked(magnifier.get(), &Magnifier::changePosition);
    QTest::keyClick(magnifier.get(), Qt::Key_Right);
    QCOMPARE(asked.first().first().toPoint(), QPoint(31, 20));
}

void TestMagnifier::aClickGivesTheKeyboardFocus()
{
    QWidget window;
    auto *other = new QWidget(&window);
    other->setFocusPolicy(Qt::StrongFocus);
    auto *child = new Magnifier(&window);
    child->resize(200, 100);
    window.show();
    QApplication::setActiveWindow(&window);
    QVERIFY(QTest::qWaitForWindowActive(&window));
    other->setFocus();
    QVERIFY(other->hasFocus());
    QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, QPoint(50, 50));
    QTRY_VERIFY(child->hasFocus());
}

void TestMagnifier::aClickStepsByWholeSquares_data()
{
    QTest::addColumn<int>("zoom");
    QTest::addColumn<int>("offset");
    QTest::addColumn<int>("steps");
    QTest::newRow("centre") << 20 << 0 << 0;
    QTest::newRow("half a zoom right") << 20 << 10 << 0;
    QTest::newRow("beyond half a zoom") << 20 << 11 << 1;
    QTest::newRow("30 right") << 20 << 30 << 1;
    QTest::newRow("31 right") << 20 << 31 << 2;
    QTest::newRow("half a zoom left") << 20 << -10 << 0;
    QTest::newRow("beyond half a zoom left") << 20 << -11 << -1;
    QTest::newRow("30 left") << 20 << -30 << -1;
    QTest::newRow("31 left") << 20 << -31 << -2;
    QTest::newRow("odd zoom, right") << 5 << 2 << 0;
    QTest::newRow("odd zoom, first right") << 5 << 3 << 1;
    QTest::newRow("odd zoom, left") << 5 << -3 << 0;
    QTest::newRow("odd zoom, first left") << 5 << -4 << -1;
    QTest::newRow("largest zoom") << 100 << 49 << 0;
    QTest::newRow("outside the label") << 20 << 1030 << 51;
    QTest::newRow("outside the label, left") << 20 << -1031 << -52;
}

void TestMagnifier::aClickStepsByWholeSquares()
{
    QFETCH(int, zoom);
    QFETCH(int, offset);
    QFETCH(int, steps);
    magnifier->setZoom(zoom);
    magnifier->setPosition(QPoint(100, 200));
    QSignalSpy spy(magnifier.get(), &Magnifier::changePosition);
    clickBesideCentre(offset, 0);
    clickBesideCentre(0, offset);
    QCOMPARE(spy.count(), 2);
    QCOMPARE(spy.first().first().toPoint(), QPoint(100 + steps, 200));
    QCOMPARE(spy.last().first().toPoint(), QPoint(100, 200 + steps));
}

void TestMagnifier::stepsAreCountedZoomByZoom()
{
    magnifier->resize(201, 99);
    QSignalSpy spy(magnifier.get(), &Magnifier::changePosition);
    for (int zoom : {1, 2, 3, 5, 6, 20, 33, 99, 100}) {
        magnifier->setZoom(zoom);
        for (int offset = -250; offset <= 250; ++offset) {
            clickBesideCentre(offset, -offset);
            const QPoint expected(countedSteps(offset, zoom), countedSteps(-offset, zoom));
            QCOMPARE(spy.takeFirst().first().toPoint(), expected);
        }
    }
}

void TestMagnifier::aClickOnTheMiddleSquareStillReports()
{
    magnifier->setPosition(QPoint(30, 20));
    QSignalSpy spy(magnifier.get(), &Magnifier::changePosition);
    clickBesideCentre(0, 0);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.first().first().toPoint(), QPoint(30, 20));
}

/// What a person sees under the mouse is what becomes the focus.
void TestMagnifier::aClickOnASquareAsksForItsPixel()
{
    const QPoint focus(30, 20);
    magnifier->setPosition(focus);
    shownFor(gradientFrame());
    const QImage seen = magnifier->grab().toImage();
    QSignalSpy spy(magnifier.get(), &Magnifier::changePosition);
    for (int column = -4; column <= 4; ++column) {
        const QPoint offset(column * 20 + 5, -40 + 5);
        clickBesideCentre(offset.x(), offset.y());
        const QPoint asked = spy.takeFirst().first().toPoint();
        QCOMPARE(asked, focus + QPoint(column, -2));
        QCOMPARE(qBlue(seen.pixel(QPoint(100, 50) + offset)), greyAt(asked.x(), asked.y()));
    }
}

void TestMagnifier::onlyTheLeftButtonActs()
{
    QSignalSpy spy(magnifier.get(), &Magnifier::changePosition);
    QTest::mouseClick(magnifier.get(), Qt::RightButton, {}, QPoint(10, 10));
    QTest::mouseClick(magnifier.get(), Qt::MiddleButton, {}, QPoint(10, 10));
    QTest::mouseMove(magnifier.get(), QPoint(20, 20));
    QTest::mouseRelease(magnifier.get(), Qt::LeftButton, {}, QPoint(20, 20));
    QCOMPARE(spy.count(), 0);
    QTest::mousePress(magnifier.get(), Qt::LeftButton, {}, QPoint(10, 10));
    QCOMPARE(spy.count(), 1);
}

void TestMagnifier::requestsStayWithinAnInt_data()
{
    QTest::addColumn<QPoint>("focus");
    QTest::addColumn<int>("key");
    QTest::newRow("left") << QPoint(Least, 0) << int(Qt::Key_Left);
    QTest::newRow("up") << QPoint(0, Least) << int(Qt::Key_Up);
    QTest::newRow("right") << QPoint(Most, 0) << int(Qt::Key_Right);
    QTest::newRow("down") << QPoint(0, Most) << int(Qt::Key_Down);
}

void TestMagnifier::requestsStayWithinAnInt()
{
    QFETCH(QPoint, focus);
    QFETCH(int, key);
    magnifier->setPosition(focus);
    QSignalSpy spy(magnifier.get(), &Magnifier::changePosition);
    QTest::keyClick(magnifier.get(), static_cast<Qt::Key>(key));
    QCOMPARE(spy.first().first().toPoint(), focus);
}

QTEST_MAIN(TestMagnifier)

#include "tst_magnifier.moc"
