// SPDX-License-Identifier: MIT
// The ring: when it is there, where it lies, and that it is in nobody's way.
#include "focusring.h"

#include <QLabel>
#include <QVBoxLayout>
#include <QtTest>

#include <memory>

class TestFocusRing : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { window.reset(); }

    void itIsThereWhenTheFocusCameByKey_data();
    void itIsThereWhenTheFocusCameByKey();
    void itGoesWithTheFocus();
    void itOutlastsWhatTakesTheFocusForAWhile();
    void itLiesJustInsideTheEdge();
    void theMouseGoesThroughIt();
    void itDoesNotCoverWhatIsWithin();

private:
    std::unique_ptr<QWidget> window;
    QLabel *owner = nullptr;
    QLabel *other = nullptr;
    FocusRing *ring = nullptr;
};

void TestFocusRing::init()
{
    window = std::make_unique<QWidget>();
    auto *layout = new QVBoxLayout(window.get());
    for (QLabel **label : {&owner, &other}) {
        *label = new QLabel("text");
        (*label)->setMinimumSize(120, 80);
        (*label)->setFocusPolicy(Qt::StrongFocus);
        layout->addWidget(*label);
    }
    ring = new FocusRing(owner);
    window->show();
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
    other->setFocus();
    QVERIFY(ring->isHidden());
}

void TestFocusRing::itIsThereWhenTheFocusCameByKey_data()
{
    QTest::addColumn<int>("reason");
    QTest::addColumn<bool>("isThere");
    QTest::newRow("Tab") << int(Qt::TabFocusReason) << true;
    QTest::newRow("Tab backwards") << int(Qt::BacktabFocusReason) << true;
    QTest::newRow("a label's key") << int(Qt::ShortcutFocusReason) << true;
    QTest::newRow("a click") << int(Qt::MouseFocusReason) << false;
    QTest::newRow("the program") << int(Qt::OtherFocusReason) << false;
}

void TestFocusRing::itIsThereWhenTheFocusCameByKey()
{
    QFETCH(int, reason);
    QFETCH(bool, isThere);
    owner->setFocus(static_cast<Qt::FocusReason>(reason));
    QVERIFY(owner->hasFocus());
    QCOMPARE(ring->isVisible(), isThere);
}

void TestFocusRing::itGoesWithTheFocus()
{
    owner->setFocus(Qt::TabFocusReason);
    QVERIFY(ring->isVisible());
    QTest::keyClick(owner, Qt::Key_Tab);
    QVERIFY(other->hasFocus());
    QVERIFY(!ring->isVisible());
}

void TestFocusRing::itOutlastsWhatTakesTheFocusForAWhile()
{
    owner->setFocus(Qt::TabFocusReason);
    for (const Qt::FocusReason reason : {Qt::ActiveWindowFocusReason, Qt::PopupFocusReason}) {
        QFocusEvent out(QEvent::FocusOut, reason);
        QApplication::sendEvent(owner, &out);
        QVERIFY(ring->isVisible());
        QFocusEvent in(QEvent::FocusIn, reason);
        QApplication::sendEvent(owner, &in);
        QVERIFY(ring->isVisible());
    }
    owner->clearFocus();
    QVERIFY(!ring->isVisible());
}

void TestFocusRing::itLiesJustInsideTheEdge()
{
    owner->setFocus(Qt::TabFocusReason);
    for (const QSize &size : {QSize(140, 90), QSize(300, 100)}) {
        owner->resize(size);
        const QImage with = owner->grab().toImage();
        const QColor colour = owner->palette().color(QPalette::Highlight);
        const int right = with.width() - 1;
        const int bottom = with.height() - 1;
        for (const QPoint &edge : {QPoint(0, 0), QPoint(right, 0), QPoint(0, bottom), QPoint(right, bottom),
                                   QPoint(1, bottom / 2), QPoint(right / 2, 1)})
            QCOMPARE(with.pixelColor(edge), colour);
        QVERIFY(with.pixelColor(2, bottom / 2) != colour);
        QVERIFY(with.pixelColor(right / 2, bottom - 2) != colour);
    }
}

void TestFocusRing::theMouseGoesThroughIt()
{
    owner->setFocus(Qt::TabFocusReason);
    QVERIFY(ring->testAttribute(Qt::WA_TransparentForMouseEvents));
    QCOMPARE(window->childAt(owner->geometry().topLeft()), static_cast<QWidget *>(owner));
}

void TestFocusRing::itDoesNotCoverWhatIsWithin()
{
    owner->setFocus(Qt::TabFocusReason);
    QVERIFY(!ring->mask().contains(owner->rect().center()));
    QVERIFY(ring->mask().contains(QPoint(0, 0)));
}

QTEST_MAIN(TestFocusRing)
#include "tst_focusring.moc"
