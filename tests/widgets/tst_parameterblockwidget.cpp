// SPDX-License-Identifier: MIT
// Tests of the grid of controls: what stands where, how the keyboard and a reader come to it.
#include "parameterblockwidget.h"

#include "parameterwindow.h"

#include <QAccessible>
#include <QGridLayout>
#include <QPointer>

#include <memory>

namespace {

/// The nine widgets, row by row from left to right.
QList<QWidget *> inReadingOrder(const ParameterBlockWidget &block)
{
    return {block.framerate()->label(),  block.framerate()->slider(),  block.framerate()->spinBox(),
            block.exposure()->label(),   block.exposure()->slider(),   block.exposure()->spinBox(),
            block.mastergain()->label(), block.mastergain()->slider(), block.mastergain()->spinBox()};
}

QList<QWidget *> turnable(const ParameterBlockWidget &block)
{
    QList<QWidget *> widgets = inReadingOrder(block);
    for (const int label : {6, 3, 0})
        widgets.removeAt(label);
    return widgets;
}

QString readAloud(QWidget *widget)
{
    return QAccessible::queryAccessibleInterface(widget)->text(QAccessible::Name);
}

} // namespace

class TestParameterBlockWidget : public QObject
{
    Q_OBJECT

private slots:
    void namesItsControls();
    void placesEachControlInARowOfItsOwn();
    void isTheParentOfAllNineWidgets();
    void hasItsLayoutAndTheGivenParent();
    void controlsReportByThemselves();
    void isSwitchedAsAWhole();
    void theTabKeyFollowsTheEye();
    void theTabKeyFollowsTheEyeInAnotherWindowToo();
    void slidersAndSpinBoxesAreReadAloudByTheirLabel();
    void aTallBlockKeepsItsRowsTogether();
    void aWideBlockGivesItsSpaceToTheSliders();
    void takesItsControlsAlongWhenItDies();
};

void TestParameterBlockWidget::namesItsControls()
{
    const ParameterBlockWidget block;
    QCOMPARE(block.framerate()->label()->text(), QString("Framerate"));
    QCOMPARE(block.exposure()->label()->text(), QString("Exposure"));
    QCOMPARE(block.mastergain()->label()->text(), QString("Mastergain"));
}

void TestParameterBlockWidget::placesEachControlInARowOfItsOwn()
{
    const ParameterBlockWidget block;
    const auto *grid = qobject_cast<QGridLayout *>(block.layout());
    QVERIFY(grid);
    QCOMPARE(grid->count(), 9);
    QCOMPARE(grid->rowCount(), 3);
    QCOMPARE(grid->columnCount(), 3);
    const QList<QWidget *> widgets = inReadingOrder(block);
    for (int i = 0; i < widgets.size(); ++i)
        QCOMPARE(grid->itemAtPosition(i / 3, i % 3)->widget(), widgets.at(i));
}

void TestParameterBlockWidget::isTheParentOfAllNineWidgets()
{
    ParameterBlockWidget block;
    for (const QWidget *widget : inReadingOrder(block))
        QCOMPARE(widget->parentWidget(), &block);
}

void TestParameterBlockWidget::hasItsLayoutAndTheGivenParent()
{
    QWidget window;
    const auto *block = new ParameterBlockWidget(&window);
    QCOMPARE(block->parentWidget(), &window);
    QCOMPARE(block->layout()->parentWidget(), block);
}

void TestParameterBlockWidget::controlsReportByThemselves()
{
    const ParameterBlockWidget block;
    QSignalSpy framerate(block.framerate(), &DoubleParameterWidget::valueChanged);
    QSignalSpy exposure(block.exposure(), &DoubleParameterWidget::valueChanged);
    QSignalSpy mastergain(block.mastergain(), &ParameterWidget::valueChanged);
    block.exposure()->spinBox()->setValue(12.0);
    QCOMPARE(framerate.count(), 0);
    QCOMPARE(exposure.count(), 1);
    QCOMPARE(mastergain.count(), 0);
    block.mastergain()->spinBox()->setValue(12);
    QCOMPARE(framerate.count(), 0);
    QCOMPARE(exposure.count(), 1);
    QCOMPARE(mastergain.count(), 1);
}

void TestParameterBlockWidget::isSwitchedAsAWhole()
{
    ParameterBlockWidget block;
    block.setEnabled(false);
    for (const QWidget *widget : inReadingOrder(block))
        QVERIFY(!widget->isEnabled());
    block.setEnabled(true);
    for (const QWidget *widget : inReadingOrder(block))
        QVERIFY(widget->isEnabled());
}

void TestParameterBlockWidget::theTabKeyFollowsTheEye()
{
    ParameterBlockWidget block;
    block.show();
    block.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&block));
    const QList<QWidget *> stops = turnable(block);
    stops.first()->setFocus();
    for (QWidget *stop : stops) {
        QCOMPARE(QApplication::focusWidget(), stop);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    QCOMPARE(QApplication::focusWidget(), stops.first());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
    QCOMPARE(QApplication::focusWidget(), stops.last());
}

void TestParameterBlockWidget::theTabKeyFollowsTheEyeInAnotherWindowToo()
{
    QWidget window;
    auto *layout = new QHBoxLayout(&window);
    auto *block = new ParameterBlockWidget;
    layout->addWidget(block);
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    block->framerate()->slider()->setFocus();
    for (QWidget *stop : turnable(*block)) {
        QCOMPARE(QApplication::focusWidget(), stop);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
}

void TestParameterBlockWidget::slidersAndSpinBoxesAreReadAloudByTheirLabel()
{
    ParameterBlockWidget block;
    QStringList names;
    for (QWidget *widget : turnable(block))
        names << readAloud(widget);
    QCOMPARE(names,
             (QStringList{"Framerate", "Framerate", "Exposure", "Exposure", "Mastergain", "Mastergain"}));
}

void TestParameterBlockWidget::aTallBlockKeepsItsRowsTogether()
{
    ParameterBlockWidget block;
    block.resize(block.sizeHint());
    block.show();
    QVERIFY(QTest::qWaitForWindowExposed(&block));
    const int lastRow = block.mastergain()->spinBox()->geometry().bottom();
    block.resize(block.width(), 3 * block.height());
    QTRY_COMPARE(block.height(), 3 * block.sizeHint().height());
    QCOMPARE(block.mastergain()->spinBox()->geometry().bottom(), lastRow);
}

void TestParameterBlockWidget::aWideBlockGivesItsSpaceToTheSliders()
{
    ParameterBlockWidget block;
    block.resize(block.sizeHint());
    block.show();
    QVERIFY(QTest::qWaitForWindowExposed(&block));
    const int before = block.width();
    const int slider = block.framerate()->slider()->width();
    const int spinBox = block.framerate()->spinBox()->width();
    block.resize(before + 300, block.height());
    QTRY_COMPARE(block.width(), before + 300);
    QCOMPARE(block.framerate()->slider()->width(), slider + 300);
    QCOMPARE(block.framerate()->spinBox()->width(), spinBox);
}

void TestParameterBlockWidget::takesItsControlsAlongWhenItDies()
{
    auto block = std::make_unique<ParameterBlockWidget>();
    const QList<QPointer<QObject>> owned{block->framerate(), block->exposure(), block->mastergain(),
                                         block->framerate()->label(), block->mastergain()->spinBox()};
    block.reset();
    for (const QPointer<QObject> &object : owned)
        QVERIFY(!object);
}

QTEST_MAIN(TestParameterBlockWidget)
#include "tst_parameterblockwidget.moc"
