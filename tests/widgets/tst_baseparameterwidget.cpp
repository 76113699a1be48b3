// SPDX-License-Identifier: MIT
// Tests of what the parameter controls share, and of who owns their widgets.
#include "baseparameterwidget.h"

#include <QHBoxLayout>
#include <QtTest>

#include <memory>

class TestBaseParameterWidget : public QObject
{
    Q_OBJECT

private slots:
    void startsWithAHorizontalSliderOfStepsOneAndFour();
    void setTextSetsTheLabel();
    void theSliderIsReadAloudByTheLabelsText();
    void setEnabledReachesLabelAndSlider();
    void widgetsThatWereNeverPlacedDieWithTheControl();
    void placedWidgetsBelongToTheirWindow();
    void outlivesItsWidgets();
};

void TestBaseParameterWidget::startsWithAHorizontalSliderOfStepsOneAndFour()
{
    const BaseParameterWidget control;
    QCOMPARE(control.slider()->orientation(), Qt::Horizontal);
    QCOMPARE(control.slider()->singleStep(), 1);
    QCOMPARE(control.slider()->pageStep(), 4);
    QVERIFY(!control.slider()->parent());
    QVERIFY(!control.label()->parent());
}

void TestBaseParameterWidget::setTextSetsTheLabel()
{
    BaseParameterWidget control;
    control.setText("Mastergain");
    QCOMPARE(control.label()->text(), QString("Mastergain"));
}

void TestBaseParameterWidget::theSliderIsReadAloudByTheLabelsText()
{
    BaseParameterWidget control;
    control.setText("Mastergain");
    QCOMPARE(control.slider()->accessibleName(), QString("Mastergain"));
}

void TestBaseParameterWidget::setEnabledReachesLabelAndSlider()
{
    BaseParameterWidget control;
    control.setEnabled(false);
    QVERIFY(!control.label()->isEnabled());
    QVERIFY(!control.slider()->isEnabled());
    control.setEnabled(true);
    QVERIFY(control.label()->isEnabled());
    QVERIFY(control.slider()->isEnabled());
}

void TestBaseParameterWidget::widgetsThatWereNeverPlacedDieWithTheControl()
{
    auto control = std::make_unique<BaseParameterWidget>();
    const QPointer<QLabel> label = control->label();
    const QPointer<QSlider> slider = control->slider();
    control.reset();
    QVERIFY(!label);
    QVERIFY(!slider);
}

void TestBaseParameterWidget::placedWidgetsBelongToTheirWindow()
{
    auto window = std::make_unique<QWidget>();
    auto *layout = new QHBoxLayout(window.get());
    auto control = std::make_unique<BaseParameterWidget>();
    layout->addWidget(control->label());
    layout->addWidget(control->slider());
    const QPointer<QLabel> label = control->label();
    const QPointer<QSlider> slider = control->slider();
    control.reset();
    QVERIFY(label);
    QVERIFY(slider);
    window.reset();
    QVERIFY(!label);
    QVERIFY(!slider);
}

void TestBaseParameterWidget::outlivesItsWidgets()
{
    BaseParameterWidget control;
    auto window = std::make_unique<QWidget>();
    control.label()->setParent(window.get());
    control.slider()->setParent(window.get());
    window.reset();
    QVERIFY(!control.label());
    QVERIFY(!control.slider());
}

QTEST_MAIN(TestBaseParameterWidget)
#include "tst_baseparameterwidget.moc"
