// SPDX-License-Identifier: MIT
// Tests of the control for a broken number: who follows whom, what is snapped, and what is reported when.
#include "doubleparameterwidget.h"

#include "parameterwindow.h"

#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <stdexcept>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

namespace {

constexpr auto BoxChanged = static_cast<void (QDoubleSpinBox::*)(double)>(&QDoubleSpinBox::valueChanged);
constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double Infinite = std::numeric_limits<double>::infinity();
constexpr int MostSteps = std::numeric_limits<int>::max();

using Shown = ParameterWindow<DoubleParameterWidget>;
using Reports = QList<double>;

void setRange(DoubleParameterWidget *control, double min, double max, double increment, double value)
{
    CameraParameter<double> param{min, max, increment, value};
    control->setParam(param);
}

/// To the hundredth, as the spin box shows them: a sum of steps is not as exact as a written number.
Reports reports(const QSignalSpy &spy)
{
    Reports values;
    for (const QList<QVariant> &arguments : spy)
        values << std::round(arguments.first().toDouble() * 100.0) / 100.0;
    return values;
}

void typeInto(QWidget *box, const QString &text)
{
    box->setFocus();
    static_cast<QAbstractSpinBox *>(box)->selectAll();
    QTest::keyClicks(box, text);
}

/// Keeps the widgets that are switched on or off, in the order in which that happens.
class SwitchWatch : public QObject
{
public:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::EnabledChange)
            switched << watched;
        return QObject::eventFilter(watched, event);
    }

    QList<QObject *> switched;
};

} // namespace

class TestDoubleParameterWidget : public QObject
{
    Q_OBJECT

public slots:
    void interrupt() { whileCopying(); }

private slots:
    void startsWithTheDefaultRanges();

    void setParamGivesTheSliderItsStepsAndTheSpinBoxANegativeStep();
    void setParamReportsWhatTheOldSliderMakesOfTheValue();
    void setParamOfTheSameValueAgainReportsNothing();
    void setParamReportsTheClampedValueWhenTheRangeShrinks();
    void setParamGoesOnWithWhatTheReceiverChanged();
    void setParamTakesRangeStepAndValueInOrder();
    void setParamKeepsNoReference();
    void setParamCutsPartsOfAStep();
    void setParamSurvivesAnyNumber_data();
    void setParamSurvivesAnyNumber();
    void anUnreadableRangeShowsItsOnlyValue();
    void anEmptyRangeStaysStill();
    void aRangeWithoutStepsShowsItsMaximumWhenTheSliderFallsToZero();

    void draggingMovesTheSpinBoxContinuouslyAndReportsOnceOnRelease();
    void sliderPositionsLieEvenlyInTheSpinBoxsRange();
    void keysOnTheSliderMoveTheSpinBoxAndReportNothing();
    void theWheelOnTheSliderMovesTheSpinBoxAndReportsNothing();
    void theSlidersGrooveMovesTheSpinBoxAndReportsNothing();

    void typingReportsOnceAtEnterAndSnapsWhenTheSliderMoves();
    void typingWithinASliderStepReportsTheTypedValue();
    void typingReportsOnceWhenTheFocusLeaves();
    void digitsAreLeftAloneWhileTyping();
    void enterOnAnUntouchedValueReportsNothing();
    void valuesAreTypedToTheHundredth();
    void arrowKeysStepOppositeAndReportOnce();
    void arrowButtonsStepOppositeAndReportOnce();
    void theWheelOnTheSpinBoxStepsOppositeAndReportsOnce();
    void steppingAfterTypingReportsOnce();

    void changeValueSnapsTheSpinBoxAndReportsNothing();
    void changeValueLetsTheSliderSignal();
    void changeValueRelativeMovesTheSpinBoxAlone();
    void theSliderFollowsBeforeTheValueIsReported();
    void receiversOfTheSliderMayReportOnceItWroteBack();
    void emitValueChangedReportsTheSpinBoxExceptDuringACopy();
    void aHeldSliderThatIsCopiedToReportsNothing();
    void aSecondChangeValueOnAnotherControlDuringTheFirstDoesNothing();
    void aSecondChangeValueRelativeOnAnotherControlDuringTheFirstDoesNothing();
    void theTwoCopiesDoNotHoldEachOtherUp();
    void aFailureDuringACopyLeavesTheControlsUsable();
    void receiversMayChangeOtherControls();

    void setEnabledReachesSpinBoxLabelAndSliderInThisOrder();
    void theLabelLeadsToTheSpinBox();
    void theSpinBoxDiesWithTheControlUnlessItWasPlaced();

private:
    /// Runs `work` whenever the control's spin box takes another text.
    void interruptCopies(const DoubleParameterWidget &control, const std::function<void()> &work)
    {
        whileCopying = work;
        QVERIFY(connect(innerEdit(control.spinBox()), SIGNAL(textChanged(QString)), this, SLOT(interrupt())));
    }

    std::function<void()> whileCopying;
};

void TestDoubleParameterWidget::startsWithTheDefaultRanges()
{
    const DoubleParameterWidget control;
    QCOMPARE(control.spinBox()->minimum(), 0.0);
    QCOMPARE(control.spinBox()->maximum(), 99.99);
    QCOMPARE(control.spinBox()->value(), 0.0);
    QCOMPARE(control.slider()->minimum(), 0);
    QCOMPARE(control.slider()->maximum(), 99);
    QCOMPARE(control.slider()->value(), 0);
    QVERIFY(!control.spinBox()->parent());
}

void TestDoubleParameterWidget::setParamGivesTheSliderItsStepsAndTheSpinBoxANegativeStep()
{
    DoubleParameterWidget control;
    setRange(&control, 0.0, 10.0, 0.5, 2.5);
    QCOMPARE(control.slider()->minimum(), 0);
    QCOMPARE(control.slider()->maximum(), 20);
    QCOMPARE(control.slider()->value(), 5);
    QCOMPARE(control.spinBox()->singleStep(), -0.1);
    QCOMPARE(control.spinBox()->property("singleStep").toDouble(), -0.1);
    QCOMPARE(control.spinBox()->minimum(), 0.0);
    QCOMPARE(control.spinBox()->maximum(), 10.0);
    QCOMPARE(control.spinBox()->value(), 2.5);
}

void TestDoubleParameterWidget::setParamReportsWhatTheOldSliderMakesOfTheValue()
{
    DoubleParameterWidget control;
    QSignalSpy reported(&control, &DoubleParameterWidget::valueChanged);
    setRange(&control, 0.0, 10.0, 0.5, 2.5);
    // 2.5 is cut to position 24 of the 99 that the slider still has, and 24 of 99 are 2.42 of 10.
    QCOMPARE(reports(reported), Reports{2.42});
    reported.clear();
    setRange(&control, 0.0, 10.0, 0.5, 7.5);
    QCOMPARE(reports(reported), Reports{7.5});
}

void TestDoubleParameterWidget::setParamOfTheSameValueAgainReportsNothing()
{
    DoubleParameterWidget control;
    setRange(&control, 0.0, 10.0, 0.5, 2.5);
    QSignalSpy reported(&control, &DoubleParameterWidget::valueChanged);
    setRange(&control, 0.0, 10.0, 0.5, 2.5);
    QCOMPARE(reported.count(), 0);
}

void TestDoubleParameterWidget::setParamReportsTheClampedValueWhenTheRangeShrinks()
{
    DoubleParameterWidget control;
    setRange(&control, 0.0, 10.0, 0.5, 9.0);
    QSignalSpy reported(&control, &DoubleParameterWidget::valueChanged);
    setRange(&control, 0.0, 5.0, 0.5, 5.0);
    QCOMPARE(reports(reported), Reports{5.0});
    QCOMPARE(control.spinBox()->value(), 5.0);
    QCOMPARE(control.slider()->value(), 10);
    QCOMPARE(control.slider()->maximum(), 10);
}

void TestDoubleParameterWidget::setParamGoesOnWithWhatTheReceiverChanged()
{
    DoubleParameterWidget control;
    setRange(&control, 0.0, 10.0, 0.5, 2.5);
    CameraParameter<double> param{0.0, 10.0, 0.5, 7.5};
    connect(&control, &DoubleParameterWidget::valueChanged, this, [&] { param.value = 4.0; });
    control.setParam(param);
    QCOMPARE(control.slider()->value(), 8);
    QCOMPARE(control.spinBox()->value(), 4.0);
}

void TestDoubleParameterWidget::setParamTakesRangeStepAndValueInOrder()
{
    DoubleParameterWidget control;
    setRange(&control, 20.0, 40.0, 0.5, 30.0);
    QStringList seen;
    connect(control.spinBox(), BoxChanged, this, [&](double value) {
        const SignedStepSpinBox &box = *control.spinBox();
        seen << QString("%1 of %2 to %3 by %4 at %5")
                    .arg(value)
                    .arg(box.minimum())
                    .arg(box.maximum())
                    .arg(box.singleStep())
                    .arg(control.slider()->maximum());
    });
    setRange(&control, 0.0, 10.0, 1.0, 5.0);
    // The minimum moves nothing, the maximum cuts the value, the value is set before the slider knows.
    QCOMPARE(seen, (QStringList{"10 of 0 to 10 by -0.2 at 40", "5 of 0 to 10 by -0.1 at 40"}));
}

void TestDoubleParameterWidget::setParamKeepsNoReference()
{
    DoubleParameterWidget control;
    {
        auto param = std::make_unique<CameraParameter<double>>(CameraParameter<double>{0.0, 10.0, 0.5, 4.0});
        control.setParam(*param);
    }
    control.spinBox()->stepDown();
    QCOMPARE(control.spinBox()->value(), 4.1);
    QCOMPARE(control.slider()->value(), 8);
}

void TestDoubleParameterWidget::setParamCutsPartsOfAStep()
{
    DoubleParameterWidget control;
    setRange(&control, 1.0, 10.0, 4.0, 8.9);
    QCOMPARE(control.slider()->maximum(), 2);  // 2.25 steps
    QCOMPARE(control.slider()->value(), 1);    // 1.975 steps
    QCOMPARE(control.spinBox()->value(), 5.5); // half way, though a step from the minimum is 5
}

void TestDoubleParameterWidget::setParamSurvivesAnyNumber_data()
{
    QTest::addColumn<double>("min");
    QTest::addColumn<double>("max");
    QTest::addColumn<double>("increment");
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("steps");
    QTest::addColumn<int>("position");
    QTest::newRow("increment not a number") << 0.0 << 10.0 << NotANumber << 2.5 << 0 << 0;
    QTest::newRow("increment zero") << 0.0 << 10.0 << 0.0 << 2.5 << MostSteps << MostSteps;
    QTest::newRow("increment zero, value at the minimum") << 0.0 << 10.0 << 0.0 << 0.0 << MostSteps << 0;
    QTest::newRow("increment tiny") << 0.0 << 10.0 << 1e-300 << 2.5 << MostSteps << MostSteps;
    QTest::newRow("increment infinite") << 0.0 << 10.0 << Infinite << 2.5 << 0 << 0;
    QTest::newRow("increment negative") << 0.0 << 10.0 << -0.5 << 2.5 << -20 << -20;
    QTest::newRow("maximum infinite") << 0.0 << Infinite << 0.5 << 2.5 << MostSteps << 5;
    QTest::newRow("minimum infinite") << -Infinite << 10.0 << 0.5 << 2.5 << MostSteps << MostSteps;
    QTest::newRow("all infinite") << -Infinite << Infinite << Infinite << Infinite << 0 << 0;
    QTest::newRow("value not a number") << 0.0 << 10.0 << 0.5 << NotANumber << 20 << 0;
    QTest::newRow("nothing is a number") << NotANumber << NotANumber << NotANumber << NotANumber << 0 << 0;
    QTest::newRow("maximum below minimum") << 10.0 << 0.0 << 0.5 << 2.5 << -20 << -20;
    QTest::newRow("largest numbers") << -1e308 << 1e308 << 1.0 << 1e308 << MostSteps << MostSteps;
}

void TestDoubleParameterWidget::setParamSurvivesAnyNumber()
{
    QFETCH(double, min);
    QFETCH(double, max);
    QFETCH(double, increment);
    QFETCH(double, value);
    DoubleParameterWidget control;
    setRange(&control, 0.0, 10.0, 0.5, 5.0);
    setRange(&control, min, max, increment, value);
    QTEST(control.slider()->maximum(), "steps");
    QTEST(control.slider()->value(), "position");
    for (const double next : {0.0, -1.0, 11.0, NotANumber, Infinite, -Infinite})
        control.changeValue(next);
    for (const int next : {0, 1, -1, MostSteps, std::numeric_limits<int>::min()})
        control.changeValueRelative(next);
    setRange(&control, 0.0, 10.0, 0.5, 2.5);
    QCOMPARE(control.spinBox()->value(), 2.5);
    QCOMPARE(control.slider()->value(), 5);
    QCOMPARE(control.slider()->maximum(), 20);
}

void TestDoubleParameterWidget::anUnreadableRangeShowsItsOnlyValue()
{
    DoubleParameterWidget control;
    setRange(&control, 0.0, 10.0, 0.5, 5.0);
    setRange(&control, 1.0, 1.0, NotANumber, 30.0);
    QCOMPARE(control.spinBox()->value(), 1.0);
    QCOMPARE(control.spinBox()->singleStep(), 0.0);
    QCOMPARE(control.slider()->maximum(), 0);
    QCOMPARE(control.slider()->value(), 0);
}

void TestDoubleParameterWidget::anEmptyRangeStaysStill()
{
    Shown shown;
    QVERIFY(shown.show());
    shown.set(1.0, 1.0, NotANumber, 1.0);
    QSignalSpy reported(&shown.control, &DoubleParameterWidget::valueChanged);
    QTest::keyClick(shown.control.spinBox(), Qt::Key_Up);
    QTest::keyClick(shown.control.slider(), Qt::Key_Right);
    turnWheel(shown.control.slider(), 1);
    typeInto(shown.control.spinBox(), "1\r");
    dragHandle(shown.control.slider(), {0}, [](int) {});
    QCOMPARE(shown.control.spinBox()->value(), 1.0);
    QCOMPARE(reported.count(), 0);
}

void TestDoubleParameterWidget::aRangeWithoutStepsShowsItsMaximumWhenTheSliderFallsToZero()
{
    DoubleParameterWidget control;
    setRange(&control, 0.0, 10.0, 0.5, 5.0);
    QSignalSpy reported(&control, &DoubleParameterWidget::valueChanged);
    setRange(&control, 0.0, 10.0, NotANumber, 5.0);
    QCOMPARE(control.spinBox()->value(), 10.0);
    QCOMPARE(reported.count(), 0);
}

void TestDoubleParameterWidget::draggingMovesTheSpinBoxContinuouslyAndReportsOnceOnRelease()
{
    Shown shown;
    QVERIFY(shown.show());
    shown.set(0.0, 10.0, 0.5, 2.5);
    QSignalSpy reported(&shown.control, &DoubleParameterWidget::valueChanged);
    const auto follows = [&](int position) {
        QCOMPARE(shown.control.slider()->value(), position);
        QCOMPARE(shown.control.spinBox()->value(), position * 0.5);
        QCOMPARE(reported.count(), 0);
    };
    dragHandle(shown.control.slider(), {6, 9, 14, 20, 13}, follows);
    QCOMPARE(reports(reported), Reports{6.5});
    QCOMPARE(shown.control.spinBox()->value(), 6.5);
}

void TestDoubleParameterWidget::sliderPositionsLieEvenlyInTheSpinBoxsRange()
{
    DoubleParameterWidget control;
    setRange(&control, 1.0, 10.0, 4.0, 1.0); // two positions above the minimum, though 2.25 increments
    control.slider()->setValue(1);
    QCOMPARE(control.spinBox()->value(), 5.5);
    control.slider()->setValue(2);
    QCOMPARE(control.spinBox()->value(), 10.0);
    control.slider()->setValue(0);
    QCOMPARE(control.spinBox()->value(), 1.0);
}

void TestDoubleParameterWidget::keysOnTheSliderMoveTheSpinBoxAndReportNothing()
{
    Shown shown;
    QVERIFY(shown.show());
    shown.set(0.0, 10.0, 0.5, 2.5);
    QSignalSpy reported(&shown.control, &DoubleParameterWidget::valueChanged);
    QTest::keyClick(shown.control.slider(), Qt::Key_Right);
    QCOMPARE(shown.control.spinBox()->value(), 3.0);
    QTest::keyClick(shown.control.slider(), Qt::Key_PageUp);
    QCOMPARE(shown.control.spinBox()->value(), 5.0);
    QTest::keyClick(shown.control.slider(), Qt::Key_Home);
    QCOMPARE(shown.control.spinBox()->value(), 0.0);
    QTest::keyClick(shown.control.slider(), Qt::Key_End);
    QCOMPARE(shown.control.spinBox()->value(), 10.0);
    QCOMPARE(reported.count(), 0);
}

void TestDoubleParameterWidget::theWheelOnTheSliderMovesTheSpinBoxAndReportsNothing()
{
    Shown shown;
    QVERIFY(shown.show());
    shown.set(0.0, 10.0, 0.5, 2.5);
    QSignalSpy reported(&shown.control, &DoubleParameterWidget::valueChanged);
    turnWheel(shown.control.slider(), 1);
    QVERIFY(shown.control.slider()->value() > 5);
    QCOMPARE(shown.control.spinBox()->value(), shown.control.slider()->value() * 0.5);
    turnWheel(shown.control.slider(), -2);
    QVERIFY(shown.control.slider()->value() < 5);
    QCOMPARE(shown.control.spinBox()->value(), shown.control.slider()->value() * 0.5);
    QCOMPARE(reported.count(), 0);
}

void TestDoubleParameterWidget::theSlidersGrooveMovesTheSpinBoxAndReportsNothing()
{
    Shown shown;
    QVERIFY(shown.show());
    shown.set(0.0, 10.0, 0.5, 2.5);
    QSignalSpy reported(&shown.control, &DoubleParameterWidget::valueChanged);
    QTest::mouseClick(shown.control.slider(), Qt::LeftButton, Qt::NoModifier,
                      handleAt(shown.control.slider(), 18));
    QCOMPARE(shown.control.slider()->value(), 9); // a page of four
    QCOMPARE(shown.control.spinBox()->value(), 4.5);
    QCOMPARE(reported.count(), 0);
}

void TestDoubleParameterWidget::typingReportsOnceAtEnterAndSnapsWhenTheSliderMoves()
{
    Shown shown;
    QVERIFY(shown.show());
    shown.set(0.0, 10.0, 0.5, 2.5);
    QSignalSpy reported(&shown.control, &DoubleParameterWidget::valueChanged);
    typeInto(shown.control.spinBox(), "7.8");
    QCOMPARE(reported.count(), 0);
    QTest::keyClick(shown.control.spinBox(), Qt::Key_Return);
    QCOMPARE(reports(reported), Reports{7.5});
    QCOMPARE(shown.control.spinBox()->value(), 7.5);
    QCOMPARE(shown.control.spinBox()->text(), QString("7.50"));
    QCOMPARE(shown.control.slider()->value(), 15);
}

void TestDoubleParameterWidget::typingWithinASliderStepReportsTheTypedValue()
{
    Shown shown;
    QVERIFY(shown.show());
    shown.set(0.0, 10.0, 0.5, 2.5);
    QSignalSpy reported(&shown.control, &DoubleParameterWidget::valueChanged);
    typeInto(shown.control.spinBox(), "2.8\r");
    QCOMPARE(reports(reported), Reports{2.8});
    QCOMPARE(shown.control.spinBox()->value(), 2.8);
    QCOMPARE(shown.control.slider()->value(), 5);
}

void TestDoubleParameterWidget::typingReportsOnceWhenTheFocusLeaves()
{
    Shown shown;
    QVERIFY(shown.show());
    shown.set(0.0, 10.0, 0.5, 2.5);
    QSignalSpy reported(&shown.control, &DoubleParameterWidget::valueChanged);
    typeInto(shown.control.spinBox(), "7.8");
    QCOMPARE(reported.count(), 0);
    shown.elsewhere()->setFocus();
    QCOMPARE(reports(reported), Reports{7.5});
}

void TestDoubleParameterWidget::digitsAreLeftAloneWhileTyping()
{
    Shown shown;
    QVERIFY(shown.show());
    shown.set(1.0, 60.0, 1.0, 20.0);
    QSignalSpy reported(&shown.control, &DoubleParameterWidget::valueChanged);
    QString typed;
    for (const QChar digit : QString("30.5")) {
        typed += digit;
        if (typed.size() == 1)
            typeInto(shown.control.spinBox(), digit);
        else
            QTest::keyClicks(shown.control.spinBox(), digit);
        QCOMPARE(shown.control.spinBox()->text(), typed);
        QCOMPARE(shown.control.slider()->value(), 19);
    }
    QCOMPARE(reported.count(), 0);
    QTest::keyClick(shown.control.spinBox(), Qt::Key_Enter);
    QCOMPARE(reports(reported), Reports{30.0});
}

void TestDoubleParameterWidget::enterOnAnUntouchedValueReportsNothing()
{
    Shown shown;
    QVERIFY(shown.show());
    shown.set(0.0, 10.0, 0.5, 2.5);
    QSignalSpy reported(&shown.control, &DoubleParameterWidget::valueChanged);
    QTest::keyClick(shown.control.spinBox(), Qt::Key_Return);
    QCOMPARE(reported.count(), 0);
}

void TestDoubleParameterWidget::valuesAreTypedToTheHundredth()
{
    Shown shown;
    QVERIFY(shown.show());
    shown.set(0.0, 10.0, 0.5, 2.5);
    typeInto(shown.control.spinBox(), "2.678\r");
    QCOMPARE(shown.control.spinBox()->value(), 2.67);
}

void TestDoubleParameterWidget::arrowKeysStepOppositeAndReportOnce()
{
    Shown shown;
    QVERIFY(shown.show());
    shown.set(0.0, 10.0, 0.5, 2.5);
    QSignalSpy reported(&shown.control, &DoubleParameterWidget::valueChanged);
    QTest::keyClick(shown.control.spinBox(), Qt::Key_Down);
    QCOMPARE(reports(reported), Reports{2.6}); // the slider stays
    QTest::keyClick(shown.control.spinBox(), Qt::Key_Up);
    QTest::keyClick(shown.control.spinBox(), Qt::Key_Up);
    QCOMPARE(reports(reported), (Reports{2.6, 2.5, 2.0})); // the last is 2.4, snapped
    QCOMPARE(shown.control.slider()->value(), 4);
}

void TestDoubleParameterWidget::arrowButtonsStepOppositeAndReportOnce()
{
    Shown shown;
    QVERIFY(shown.show());
    shown.set(0.0, 10.0, 0.5, 2.5);
    SignedStepSpinBox *box = shown.control.spinBox();
    QSignalSpy reported(&shown.control, &DoubleParameterWidget::valueChanged);
    QTest::mouseClick(box, Qt::LeftButton, Qt::NoModifier, arrowOf(box, QStyle::SC_SpinBoxDown));
    QCOMPARE(reports(reported), Reports{2.6});
    QTest::mouseClick(box, Qt::LeftButton, Qt::NoModifier, arrowOf(box, QStyle::SC_SpinBoxUp));
    QCOMPARE(reports(reported), (Reports{2.6, 2.5}));
}

void TestDoubleParameterWidget::theWheelOnTheSpinBoxStepsOppositeAndReportsOnce()
{
    Shown shown;
    QVERIFY(shown.show());
    shown.set(0.0, 10.0, 0.5, 2.5);
    QSignalSpy reported(&shown.control, &DoubleParameterWidget::valueChanged);
    turnWheel(shown.control.spinBox(), -1);
    QCOMPARE(reports(reported), Reports{2.6});
    turnWheel(shown.control.spinBox(), 2);
    QCOMPARE(reports(reported), (Reports{2.6, 2.0}));
}

void TestDoubleParameterWidget::steppingAfterTypingReportsOnce()
{
    Shown shown;
    QVERIFY(shown.show());
    shown.set(0.0, 10.0, 0.5, 2.5);
    QSignalSpy reported(&shown.control, &DoubleParameterWidget::valueChanged);
    typeInto(shown.control.spinBox(), "2.7");
    QTest::keyClick(shown.control.spinBox(), Qt::Key_Down);
    QCOMPARE(reports(reported), Reports{2.8});
}

void TestDoubleParameterWidget::changeValueSnapsTheSpinBoxAndReportsNothing()
{
    DoubleParameterWidget control;
    setRange(&control, 0.0, 10.0, 0.5, 2.5);
    QSignalSpy reported(&control, &DoubleParameterWidget::valueChanged);
    QSignalSpy boxChanged(control.spinBox(), BoxChanged);
    control.changeValue(7.8);
    QCOMPARE(control.slider()->value(), 15);
    QCOMPARE(control.spinBox()->value(), 7.5);
    control.changeValue(7.9); // the slider stays, so nothing is written back
    QCOMPARE(control.spinBox()->value(), 7.5);
    QCOMPARE(reported.count(), 0);
    QCOMPARE(boxChanged.count(), 0);
    QVERIFY(!control.spinBox()->signalsBlocked());
}

void TestDoubleParameterWidget::changeValueLetsTheSliderSignal()
{
    DoubleParameterWidget control;
    setRange(&control, 0.0, 10.0, 0.5, 2.5);
    QSignalSpy moved(control.slider(), &QSlider::valueChanged);
    control.changeValue(7.8);
    QCOMPARE(moved.count(), 1);
    QCOMPARE(moved.first().first().toInt(), 15);
}

void TestDoubleParameterWidget::changeValueRelativeMovesTheSpinBoxAlone()
{
    DoubleParameterWidget control;
    setRange(&control, 0.0, 10.0, 0.5, 2.5);
    QSignalSpy reported(&control, &DoubleParameterWidget::valueChanged);
    QSignalSpy boxChanged(control.spinBox(), BoxChanged);
    control.changeValueRelative(12);
    QCOMPARE(control.spinBox()->value(), 6.0);
    QCOMPARE(control.slider()->value(), 5);
    control.changeValueRelative(50); // beyond the slider, the spin box bounds it
    QCOMPARE(control.spinBox()->value(), 10.0);
    QCOMPARE(reported.count(), 0);
    QCOMPARE(boxChanged.count(), 0);
}

void TestDoubleParameterWidget::theSliderFollowsBeforeTheValueIsReported()
{
    DoubleParameterWidget control;
    setRange(&control, 0.0, 10.0, 0.5, 2.5);
    int seen = -1;
    connect(&control, &DoubleParameterWidget::valueChanged, this, [&] { seen = control.slider()->value(); });
    control.spinBox()->setValue(8.2);
    QCOMPARE(seen, 16);
}

void TestDoubleParameterWidget::receiversOfTheSliderMayReportOnceItWroteBack()
{
    DoubleParameterWidget control;
    setRange(&control, 0.0, 10.0, 0.5, 2.5);
    QSignalSpy reported(&control, &DoubleParameterWidget::valueChanged);
    connect(control.slider(), &QSlider::valueChanged, &control, &DoubleParameterWidget::emitValueChanged);
    control.changeValue(7.8); // silent itself, but the copy inside ends first and ends the silence
    QCOMPARE(reports(reported), Reports{7.5});
}

void TestDoubleParameterWidget::emitValueChangedReportsTheSpinBoxExceptDuringACopy()
{
    DoubleParameterWidget control;
    setRange(&control, 0.0, 10.0, 0.5, 2.5);
    QSignalSpy reported(&control, &DoubleParameterWidget::valueChanged);
    int calls = 0;
    interruptCopies(control, [&] {
        ++calls;
        control.emitValueChanged();
    });
    control.changeValueRelative(7);
    QCOMPARE(calls, 1);
    QCOMPARE(reported.count(), 0);
    control.emitValueChanged();
    QCOMPARE(reports(reported), Reports{3.5});
}

void TestDoubleParameterWidget::aHeldSliderThatIsCopiedToReportsNothing()
{
    DoubleParameterWidget control;
    setRange(&control, 0.0, 10.0, 0.5, 2.5);
    QSignalSpy reported(&control, &DoubleParameterWidget::valueChanged);
    QSignalSpy moved(control.slider(), &QSlider::sliderMoved);
    connect(control.slider(), &QSlider::sliderMoved, &control, &DoubleParameterWidget::emitValueChanged);
    control.slider()->setSliderDown(true);
    control.changeValue(8.0);
    QCOMPARE(moved.count(), 1);
    QCOMPARE(reported.count(), 0);
    control.slider()->setSliderDown(false);
    QCOMPARE(reports(reported), Reports{8.0});
}

void TestDoubleParameterWidget::aSecondChangeValueOnAnotherControlDuringTheFirstDoesNothing()
{
    DoubleParameterWidget first;
    DoubleParameterWidget second;
    setRange(&first, 0.0, 10.0, 0.5, 2.5);
    setRange(&second, 0.0, 10.0, 0.5, 5.0);
    const QMetaObject::Connection meeting =
        connect(first.slider(), &QSlider::valueChanged, this, [&] { second.changeValue(9.0); });
    first.changeValue(8.0);
    QCOMPARE(first.slider()->value(), 16);
    QCOMPARE(second.slider()->value(), 10);
    QCOMPARE(second.spinBox()->value(), 5.0);
    disconnect(meeting);
    second.changeValue(9.0);
    QCOMPARE(second.slider()->value(), 18);
}

void TestDoubleParameterWidget::aSecondChangeValueRelativeOnAnotherControlDuringTheFirstDoesNothing()
{
    DoubleParameterWidget first;
    DoubleParameterWidget second;
    setRange(&first, 0.0, 10.0, 0.5, 2.5);
    setRange(&second, 0.0, 10.0, 0.5, 5.0);
    int calls = 0;
    interruptCopies(first, [&] {
        ++calls;
        second.slider()->setValue(18);
    });
    first.slider()->setValue(16);
    QCOMPARE(calls, 1);
    QCOMPARE(first.spinBox()->value(), 8.0);
    QCOMPARE(second.slider()->value(), 18);
    QCOMPARE(second.spinBox()->value(), 5.0);
    second.slider()->setValue(17);
    QCOMPARE(second.spinBox()->value(), 8.5);
}

void TestDoubleParameterWidget::theTwoCopiesDoNotHoldEachOtherUp()
{
    DoubleParameterWidget first;
    DoubleParameterWidget second;
    setRange(&first, 0.0, 10.0, 0.5, 2.5);
    setRange(&second, 0.0, 10.0, 0.5, 5.0);
    connect(first.slider(), &QSlider::valueChanged, &second, &DoubleParameterWidget::changeValueRelative);
    first.changeValue(8.0);
    QCOMPARE(second.spinBox()->value(), 8.0);
}

void TestDoubleParameterWidget::aFailureDuringACopyLeavesTheControlsUsable()
{
#if defined(Q_PROCESSOR_ARM_32)
    QSKIP("No exception crosses QtWidgets here.");
#endif
#if defined(__SANITIZE_ADDRESS__)
    // QtWidgets does not free the texts that it holds when an exception passes through it.
    const __lsan::ScopedDisabler unreported;
#endif
    DoubleParameterWidget control;
    setRange(&control, 0.0, 10.0, 0.5, 2.5);
    const auto fail = [] { throw std::runtime_error("during the copy"); };
    const QMetaObject::Connection failing = connect(control.slider(), &QSlider::valueChanged, this, fail);
    QVERIFY_EXCEPTION_THROWN(control.changeValue(8.0), std::runtime_error);
    disconnect(failing);
    interruptCopies(control, fail);
    QVERIFY_EXCEPTION_THROWN(control.changeValueRelative(3), std::runtime_error);
    whileCopying = [] {};
    QVERIFY(!control.spinBox()->signalsBlocked());
    QSignalSpy reported(&control, &DoubleParameterWidget::valueChanged);
    control.spinBox()->setValue(6.2);
    QCOMPARE(control.slider()->value(), 12);
    QCOMPARE(reports(reported), Reports{6.0});
}

void TestDoubleParameterWidget::receiversMayChangeOtherControls()
{
    DoubleParameterWidget first;
    DoubleParameterWidget second;
    setRange(&first, 0.0, 10.0, 0.5, 2.5);
    setRange(&second, 0.0, 10.0, 0.5, 5.0);
    connect(&first, &DoubleParameterWidget::valueChanged, &second, &DoubleParameterWidget::changeValue);
    first.spinBox()->setValue(8.0); // reported after the copy, when no flag is set any more
    QCOMPARE(second.spinBox()->value(), 8.0);
}

void TestDoubleParameterWidget::setEnabledReachesSpinBoxLabelAndSliderInThisOrder()
{
    DoubleParameterWidget control;
    SwitchWatch watch;
    for (QObject *widget : {static_cast<QObject *>(control.label()), static_cast<QObject *>(control.slider()),
                            static_cast<QObject *>(control.spinBox())})
        widget->installEventFilter(&watch);
    const QList<QObject *> order{control.spinBox(), control.label(), control.slider()};
    control.setEnabled(false);
    QCOMPARE(watch.switched, order);
    QVERIFY(!control.spinBox()->isEnabled());
    QVERIFY(!control.label()->isEnabled());
    QVERIFY(!control.slider()->isEnabled());
    control.setEnabled(true);
    QCOMPARE(watch.switched, order + order);
    QVERIFY(control.spinBox()->isEnabled());
}

void TestDoubleParameterWidget::theLabelLeadsToTheSpinBox()
{
    const DoubleParameterWidget control;
    QCOMPARE(control.label()->buddy(), static_cast<QWidget *>(control.spinBox()));
}

void TestDoubleParameterWidget::theSpinBoxDiesWithTheControlUnlessItWasPlaced()
{
    auto control = std::make_unique<DoubleParameterWidget>();
    const QPointer<QDoubleSpinBox> unplaced = control->spinBox();
    control.reset();
    QVERIFY(!unplaced);

    auto window = std::make_unique<QWidget>();
    auto *layout = new QHBoxLayout(window.get());
    control = std::make_unique<DoubleParameterWidget>();
    layout->addWidget(control->spinBox());
    const QPointer<QDoubleSpinBox> placed = control->spinBox();
    control.reset();
    QVERIFY(placed);
    window.reset();
    QVERIFY(!placed);
}

QTEST_MAIN(TestDoubleParameterWidget)
#include "tst_doubleparameterwidget.moc"
