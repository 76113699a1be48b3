// SPDX-License-Identifier: MIT
// Tests the magnifier dock's content: its layout, its connections and the mouse wheel over it.
#include "magnifiercontrol.h"

#include "magnifier.h"

#include <QBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QSignalSpy>
#include <QSlider>
#include <QWheelEvent>
#include <QtTest>

#include <limits>
#include <memory>

namespace {

constexpr int Notch = 120;

QImage greyFrame(int grey)
{
    QImage frame(64, 48, QImage::Format_Indexed8);
    frame.fill(static_cast<uint>(grey));
    return frame;
}

} // namespace

class TestMagnifierControl : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void theMagnifierStandsOverSliderAndPixelInfo();
    void theMagnifierTakesTheRoom();
    void tabsGoFromTheMagnifierToTheSlider();
    void theToolTipTellsOfTheClick();
    void theSliderStartsAtTheMagnifiersZoom();
    void theSliderSetsTheZoom();
    void pixelInfoIsShown_data();
    void pixelInfoIsShown();
    void theMagnifiersPixelInfoIsShown();
    void theControlDoesNotGrowWithTheValue();
    void itBelongsToItsParent();

    void theWheelTurnsTheSlider_data();
    void theWheelTurnsTheSlider();
    void theWheelIsTurnedBySingleSteps();
    void halfNotchesAreCutTowardZero_data();
    void halfNotchesAreCutTowardZero();
    void aSidewaysWheelChangesNothing();
    void theWheelOverTheMagnifierTurnsTheSlider();

private:
    QSlider *slider() const { return control->findChild<QSlider *>(); }
    QLabel *infoLabel(int place) const;
    bool turnWheel(QWidget *target, const QPoint &angleDelta);

    std::unique_ptr<MagnifierControl> control;
};

void TestMagnifierControl::init()
{
    control = std::make_unique<MagnifierControl>();
    control->resize(200, 220);
}

void TestMagnifierControl::cleanup()
{
    control.reset();
}

/// The label at this place of the lowest row, from the left.
QLabel *TestMagnifierControl::infoLabel(int place) const
{
    return qobject_cast<QLabel *>(control->layout()->itemAt(1)->layout()->itemAt(place)->widget());
}

/// @return whether the widget or one of its parents accepted the event.
bool TestMagnifierControl::turnWheel(QWidget *target, const QPoint &angleDelta)
{
    QWheelEvent event(QPointF(5, 5), target->mapToGlobal(QPoint(5, 5)), QPoint(), angleDelta, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QSpontaneKeyEvent::setSpontaneous(&event); // as from the window system: ignored ones reach the parent
    qApp->notify(target, &event);
    return event.isAccepted();
}

void TestMagnifierControl::theMagnifierStandsOverSliderAndPixelInfo()
{
    auto *main = qobject_cast<QVBoxLayout *>(control->layout());
    QVERIFY(main);
    QCOMPARE(main->count(), 2);
    auto *upper = qobject_cast<QVBoxLayout *>(main->itemAt(0)->layout());
    QVERIFY(upper);
    QCOMPARE(upper->count(), 2);
    QCOMPARE(upper->itemAt(0)->widget(), static_cast<QWidget *>(control->magnifier()));
    QCOMPARE(upper->stretch(0), 1);
    QCOMPARE(upper->itemAt(1)->widget(), static_cast<QWidget *>(slider()));
    auto *lower = qobject_cast<QHBoxLayout *>(main->itemAt(1)->layout());
    QVERIFY(lower);
    QCOMPARE(lower->count(), 4);
    QCOMPARE(infoLabel(0)->text(), QString("Bayer Color:"));
    QCOMPARE(infoLabel(1)->text(), QString());
    QCOMPARE(infoLabel(2)->text(), QString("Value: "));
    QCOMPARE(infoLabel(3)->text(), QString());
}

void TestMagnifierControl::theMagnifierTakesTheRoom()
{
    const QSize smallest(160, 120);
    QCOMPARE(control->magnifier()->minimumSize(), smallest);
    QCOMPARE(control->magnifier()->parentWidget(), control.get());
    control->show();
    control->resize(1, 1);
    QTRY_COMPARE(control->magnifier()->height(), smallest.height());
    const int around = control->height() - smallest.height();
    control->resize(500, 800);
    QTRY_COMPARE(control->magnifier()->height(), 800 - around);
    QVERIFY(control->magnifier()->width() > 450);
}

void TestMagnifierControl::tabsGoFromTheMagnifierToTheSlider()
{
    control->show();
    QApplication::setActiveWindow(control.get());
    QVERIFY(QTest::qWaitForWindowActive(control.get()));
    control->magnifier()->setFocus();
    QTest::keyClick(control->magnifier(), Qt::Key_Tab);
    QTRY_VERIFY(slider()->hasFocus());
}

void TestMagnifierControl::theToolTipTellsOfTheClick()
{
    QCOMPARE(control->toolTip(), QString("Click to center"));
}

void TestMagnifierControl::theSliderStartsAtTheMagnifiersZoom()
{
    QCOMPARE(slider()->orientation(), Qt::Horizontal);
    QCOMPARE(slider()->minimum(), 5);
    QCOMPARE(slider()->maximum(), 100);
    QCOMPARE(slider()->value(), 20);
    QCOMPARE(control->magnifier()->zoom(), 20);
}

void TestMagnifierControl::theSliderSetsTheZoom()
{
    for (int zoom : {5, 100, 37}) {
        slider()->setValue(zoom);
        QCOMPARE(control->magnifier()->zoom(), zoom);
    }
}

void TestMagnifierControl::pixelInfoIsShown_data()
{
    QTest::addColumn<QString>("colour");
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("valueText");
    QTest::newRow("red") << "R" << 0 << "0";
    QTest::newRow("green") << "G" << 255 << "255";
    QTest::newRow("a percent sign is no place holder") << "%1" << 7 << "7";
    QTest::newRow("negative") << "" << -12 << "-12";
    QTest::newRow("large, without separators") << "B" << 1234567 << "1234567";
}

void TestMagnifierControl::pixelInfoIsShown()
{
    QFETCH(QString, colour);
    QFETCH(int, value);
    QFETCH(QString, valueText);
    control->setPixelInfo(colour, value);
    QCOMPARE(infoLabel(1)->text(), colour);
    QCOMPARE(infoLabel(3)->text(), valueText);
}

void TestMagnifierControl::theMagnifiersPixelInfoIsShown()
{
    QImage frame = greyFrame(43);
    control->magnifier()->setImage(frame);
    QCOMPARE(infoLabel(1)->text(), QString("R"));
    QCOMPARE(infoLabel(3)->text(), QString("43"));
    control->magnifier()->setPosition(QPoint(1, 1));
    QCOMPARE(infoLabel(1)->text(), QString("B"));
}

void TestMagnifierControl::theControlDoesNotGrowWithTheValue()
{
    control->magnifier()->setMinimumSize(1, 1); // the lowest row alone decides
    control->show();
    const QSize smallest = control->minimumSizeHint();
    for (const char *colour : {"R", "G", "B"}) {
        for (int value : {0, 43, 255}) {
            control->setPixelInfo(colour, value);
            control->layout()->activate();
            QCOMPARE(control->minimumSizeHint(), smallest);
        }
    }
}

void TestMagnifierControl::itBelongsToItsParent()
{
    auto parent = std::make_unique<QWidget>();
    auto *child = new MagnifierControl(parent.get());
    const QPointer<Magnifier> view = child->magnifier();
    parent.reset();
    QVERIFY(view.isNull());
}

void TestMagnifierControl::theWheelTurnsTheSlider_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("delta");
    QTest::addColumn<int>("to");
    QTest::newRow("a notch up") << 20 << Notch << 21;
    QTest::newRow("a notch down") << 20 << -Notch << 19;
    QTest::newRow("five notches up") << 20 << 5 * Notch << 25;
    QTest::newRow("not above the range") << 99 << 3 * Notch << 100;
    QTest::newRow("not below the range") << 6 << -3 * Notch << 5;
    QTest::newRow("at the upper end") << 100 << Notch << 100;
    QTest::newRow("at the lower end") << 5 << -Notch << 5;
    QTest::newRow("below zero before the range") << 5 << -100 * Notch << 5;
    QTest::newRow("greatest turn") << 20 << std::numeric_limits<int>::max() << 100;
    QTest::newRow("smallest turn") << 20 << std::numeric_limits<int>::min() << 5;
}

void TestMagnifierControl::theWheelTurnsTheSlider()
{
    QFETCH(int, from);
    QFETCH(int, delta);
    QFETCH(int, to);
    slider()->setValue(from);
    QVERIFY(turnWheel(control.get(), QPoint(0, delta)));
    QCOMPARE(slider()->value(), to);
    QCOMPARE(control->magnifier()->zoom(), to);
}

void TestMagnifierControl::theWheelIsTurnedBySingleSteps()
{
    slider()->setSingleStep(7);
    QVERIFY(turnWheel(control.get(), QPoint(0, 2 * Notch)));
    QCOMPARE(slider()->value(), 34);
    slider()->setSingleStep(std::numeric_limits<int>::max());
    QVERIFY(turnWheel(control.get(), QPoint(0, 1000 * Notch)));
    QCOMPARE(slider()->value(), 100);
}

void TestMagnifierControl::halfNotchesAreCutTowardZero_data()
{
    QTest::addColumn<int>("delta");
    QTest::addColumn<int>("to");
    QTest::newRow("half up stays") << 60 << 20;
    QTest::newRow("half down moves") << -60 << 19;
    QTest::newRow("least up stays") << 1 << 20;
    QTest::newRow("least down moves") << -1 << 19;
    QTest::newRow("one and a half up") << 180 << 21;
    QTest::newRow("one and a half down") << -180 << 18;
    QTest::newRow("nearly a notch up") << 119 << 20;
    QTest::newRow("nearly a notch down") << -119 << 19;
}

void TestMagnifierControl::halfNotchesAreCutTowardZero()
{
    QFETCH(int, delta);
    QFETCH(int, to);
    QVERIFY(turnWheel(control.get(), QPoint(0, delta)));
    QCOMPARE(slider()->value(), to);
}

void TestMagnifierControl::aSidewaysWheelChangesNothing()
{
    QVERIFY(!turnWheel(control.get(), QPoint(Notch, 0)));
    QVERIFY(!turnWheel(control.get(), QPoint(0, 0)));
    QCOMPARE(slider()->value(), 20);
}

void TestMagnifierControl::theWheelOverTheMagnifierTurnsTheSlider()
{
    control->show();
    QVERIFY(QTest::qWaitForWindowExposed(control.get()));
    QVERIFY(turnWheel(control->magnifier(), QPoint(0, Notch)));
    QCOMPARE(slider()->value(), 21);
}

QTEST_MAIN(TestMagnifierControl)

#include "tst_magnifiercontrol.moc"
