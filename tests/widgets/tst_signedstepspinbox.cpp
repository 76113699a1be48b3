// SPDX-License-Identifier: MIT
// Tests of the spin box whose step may point downwards, by keys, buttons and wheel.
#include "signedstepspinbox.h"

#include "parameterwindow.h"

#include <QProxyStyle>

#include <cmath>
#include <limits>
#include <memory>

namespace {

/// Keeps which arrows a spin box was drawn with as enabled.
class ArrowWatch : public QProxyStyle
{
public:
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                            const QWidget *widget) const override
    {
        if (const auto *spinBox = qstyleoption_cast<const QStyleOptionSpinBox *>(option))
            drawn = spinBox->stepEnabled;
        QProxyStyle::drawComplexControl(control, option, painter, widget);
    }

    mutable QAbstractSpinBox::StepEnabled drawn;
};

QAbstractSpinBox::StepEnabled drawnArrows(SignedStepSpinBox *box)
{
    ArrowWatch watch;
    QStyle *usual = box->style();
    box->setStyle(&watch);
    box->grab();
    box->setStyle(usual);
    return watch.drawn;
}

} // namespace

class TestSignedStepSpinBox : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void stepsTheUsualWayAtFirst();
    void aNegativeStepIsReportedAsItsProperty();
    void aNegativeStepCanBeSetAsItsProperty();
    void aNegativeStepTurnsTheKeysRound_data();
    void aNegativeStepTurnsTheKeysRound();
    void aNegativeStepTurnsTheButtonsRound();
    void aHeldButtonGoesOnTheSameWay();
    void aNegativeStepTurnsTheWheelRound();
    void aNegativeStepTurnsTheStepSlotsRound();
    void theEnabledArrowIsTheOneThatCanStillMove();
    void theDisabledArrowMovesNothing();
    void anEmptyRangeEnablesNoArrow();
    void aReadOnlySpinBoxEnablesNoArrow();
    void aPositiveStepTurnsItBack();
    void aStepOfZeroMovesNothing();
    void whatIsNotANumberIsNoStep();
    void anInfiniteStepGoesToTheEnd();
    void theMostStepsGoToTheEnd();
    void wrappingGoesOnAtTheOtherEnd();

private:
    std::unique_ptr<SignedStepSpinBox> box;
};

void TestSignedStepSpinBox::init()
{
    box = std::make_unique<SignedStepSpinBox>();
    box->setRange(0.0, 10.0);
    box->setValue(5.0);
    box->show();
    box->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(box.get()));
}

void TestSignedStepSpinBox::cleanup()
{
    box.reset();
}

void TestSignedStepSpinBox::stepsTheUsualWayAtFirst()
{
    QCOMPARE(box->singleStep(), 1.0);
    QTest::keyClick(box.get(), Qt::Key_Up);
    QCOMPARE(box->value(), 6.0);
    QTest::keyClick(box.get(), Qt::Key_Down);
    QTest::keyClick(box.get(), Qt::Key_Down);
    QCOMPARE(box->value(), 4.0);
}

void TestSignedStepSpinBox::aNegativeStepIsReportedAsItsProperty()
{
    box->setSingleStep(-0.25);
    QCOMPARE(box->singleStep(), -0.25);
    QCOMPARE(box->property("singleStep").toDouble(), -0.25);
    const QDoubleSpinBox &plain = *box;
    QCOMPARE(plain.property("singleStep").toDouble(), -0.25);
}

void TestSignedStepSpinBox::aNegativeStepCanBeSetAsItsProperty()
{
    QVERIFY(box->setProperty("singleStep", -0.5));
    QCOMPARE(box->singleStep(), -0.5);
    box->stepUp();
    QCOMPARE(box->value(), 4.5);
}

void TestSignedStepSpinBox::aNegativeStepTurnsTheKeysRound_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<double>("moved");
    QTest::newRow("up") << Qt::Key_Up << -0.25;
    QTest::newRow("down") << Qt::Key_Down << 0.25;
    QTest::newRow("page up") << Qt::Key_PageUp << -2.5;
    QTest::newRow("page down") << Qt::Key_PageDown << 2.5;
}

void TestSignedStepSpinBox::aNegativeStepTurnsTheKeysRound()
{
    QFETCH(Qt::Key, key);
    QFETCH(double, moved);
    box->setSingleStep(-0.25);
    QTest::keyClick(box.get(), key);
    QCOMPARE(box->value(), 5.0 + moved);
}

void TestSignedStepSpinBox::aNegativeStepTurnsTheButtonsRound()
{
    box->setSingleStep(-0.25);
    QTest::mouseClick(box.get(), Qt::LeftButton, Qt::NoModifier, arrowOf(box.get(), QStyle::SC_SpinBoxUp));
    QCOMPARE(box->value(), 4.75);
    QTest::mouseClick(box.get(), Qt::LeftButton, Qt::NoModifier, arrowOf(box.get(), QStyle::SC_SpinBoxDown));
    QTest::mouseClick(box.get(), Qt::LeftButton, Qt::NoModifier, arrowOf(box.get(), QStyle::SC_SpinBoxDown));
    QCOMPARE(box->value(), 5.25);
}

void TestSignedStepSpinBox::aHeldButtonGoesOnTheSameWay()
{
    box->setSingleStep(-0.25);
    const QPoint up = arrowOf(box.get(), QStyle::SC_SpinBoxUp);
    QTest::mousePress(box.get(), Qt::LeftButton, Qt::NoModifier, up);
    QTRY_COMPARE(box->value(), 0.0);
    QTest::mouseRelease(box.get(), Qt::LeftButton, Qt::NoModifier, up);
}

void TestSignedStepSpinBox::aNegativeStepTurnsTheWheelRound()
{
    box->setSingleStep(-0.25);
    turnWheel(box.get(), 1);
    QCOMPARE(box->value(), 4.75);
    turnWheel(box.get(), -3);
    QCOMPARE(box->value(), 5.5);
}

void TestSignedStepSpinBox::aNegativeStepTurnsTheStepSlotsRound()
{
    box->setSingleStep(-0.25);
    box->stepUp();
    QCOMPARE(box->value(), 4.75);
    box->stepDown();
    box->stepBy(-2);
    QCOMPARE(box->value(), 5.5);
}

void TestSignedStepSpinBox::theEnabledArrowIsTheOneThatCanStillMove()
{
    QCOMPARE(drawnArrows(box.get()), QAbstractSpinBox::StepUpEnabled | QAbstractSpinBox::StepDownEnabled);
    box->setValue(10.0);
    QCOMPARE(drawnArrows(box.get()), QAbstractSpinBox::StepDownEnabled);
    box->setSingleStep(-0.25);
    QCOMPARE(drawnArrows(box.get()), QAbstractSpinBox::StepUpEnabled);
    box->setValue(0.0);
    QCOMPARE(drawnArrows(box.get()), QAbstractSpinBox::StepDownEnabled);
    box->setValue(5.0);
    QCOMPARE(drawnArrows(box.get()), QAbstractSpinBox::StepUpEnabled | QAbstractSpinBox::StepDownEnabled);
}

void TestSignedStepSpinBox::theDisabledArrowMovesNothing()
{
    box->setSingleStep(-0.25);
    box->setValue(10.0);
    QTest::keyClick(box.get(), Qt::Key_Down);
    turnWheel(box.get(), -1);
    QTest::mouseClick(box.get(), Qt::LeftButton, Qt::NoModifier, arrowOf(box.get(), QStyle::SC_SpinBoxDown));
    QCOMPARE(box->value(), 10.0);
    QTest::mouseClick(box.get(), Qt::LeftButton, Qt::NoModifier, arrowOf(box.get(), QStyle::SC_SpinBoxUp));
    QCOMPARE(box->value(), 9.75);
    turnWheel(box.get(), 1);
    QCOMPARE(box->value(), 9.5);
    QTest::keyClick(box.get(), Qt::Key_Up);
    QCOMPARE(box->value(), 9.25);
}

void TestSignedStepSpinBox::anEmptyRangeEnablesNoArrow()
{
    box->setRange(1.0, 1.0);
    box->setSingleStep(-0.25);
    QCOMPARE(drawnArrows(box.get()), QAbstractSpinBox::StepEnabled(QAbstractSpinBox::StepNone));
}

void TestSignedStepSpinBox::aReadOnlySpinBoxEnablesNoArrow()
{
    box->setSingleStep(-0.25);
    box->setReadOnly(true);
    QCOMPARE(drawnArrows(box.get()), QAbstractSpinBox::StepEnabled(QAbstractSpinBox::StepNone));
    QTest::keyClick(box.get(), Qt::Key_Up);
    QCOMPARE(box->value(), 5.0);
}

void TestSignedStepSpinBox::aPositiveStepTurnsItBack()
{
    box->setSingleStep(-0.25);
    box->setSingleStep(0.5);
    QCOMPARE(box->singleStep(), 0.5);
    QTest::keyClick(box.get(), Qt::Key_Up);
    QCOMPARE(box->value(), 5.5);
}

void TestSignedStepSpinBox::aStepOfZeroMovesNothing()
{
    box->setSingleStep(-0.25);
    box->setSingleStep(0.0);
    QCOMPARE(box->singleStep(), 0.0);
    QTest::keyClick(box.get(), Qt::Key_Up);
    QTest::keyClick(box.get(), Qt::Key_Down);
    QCOMPARE(box->value(), 5.0);
}

void TestSignedStepSpinBox::whatIsNotANumberIsNoStep()
{
    box->setSingleStep(-0.25);
    box->setSingleStep(std::numeric_limits<double>::quiet_NaN());
    QCOMPARE(box->singleStep(), -0.25);
    box->setSingleStep(0.5);
    box->setSingleStep(-std::numeric_limits<double>::quiet_NaN());
    QCOMPARE(box->singleStep(), 0.5);
}

void TestSignedStepSpinBox::anInfiniteStepGoesToTheEnd()
{
    box->setSingleStep(-std::numeric_limits<double>::infinity());
    QCOMPARE(box->singleStep(), -std::numeric_limits<double>::infinity());
    QTest::keyClick(box.get(), Qt::Key_Up);
    QCOMPARE(box->value(), 0.0);
    QTest::keyClick(box.get(), Qt::Key_Down);
    QCOMPARE(box->value(), 10.0);
}

void TestSignedStepSpinBox::theMostStepsGoToTheEnd()
{
    box->setSingleStep(-0.25);
    box->stepBy(std::numeric_limits<int>::min());
    QCOMPARE(box->value(), 10.0);
    box->stepBy(std::numeric_limits<int>::max());
    QCOMPARE(box->value(), 0.0);
}

void TestSignedStepSpinBox::wrappingGoesOnAtTheOtherEnd()
{
    box->setSingleStep(-0.25);
    box->setWrapping(true);
    box->setValue(0.0);
    QTest::keyClick(box.get(), Qt::Key_Up);
    QCOMPARE(box->value(), 10.0);
    QCOMPARE(drawnArrows(box.get()), QAbstractSpinBox::StepUpEnabled | QAbstractSpinBox::StepDownEnabled);
}

QTEST_MAIN(TestSignedStepSpinBox)
#include "tst_signedstepspinbox.moc"
