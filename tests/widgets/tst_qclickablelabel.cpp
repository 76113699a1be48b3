// SPDX-License-Identifier: MIT
// Tests of the clickable label: its clicks, its look, and that the hand cursor is given back on every way
// out.
#include "qclickablelabel.h"

#include <QDialog>
#include <QMessageBox>
#include <QMouseEvent>
#include <QTimer>
#include <QVBoxLayout>
#include <QWindow>
#include <QtTest>

#include <limits>
#include <memory>

Q_DECLARE_METATYPE(Qt::MouseButton)

namespace {

using Cursors = QList<Qt::CursorShape>;

// Somebody else's cursor is on the stack in every test, so that a restore too many is seen.
const Cursors Before{Qt::WaitCursor};
const Cursors WithHand{Qt::WaitCursor, Qt::PointingHandCursor};

/// The application's override cursors, the one shown last.
Cursors cursors()
{
    Cursors shapes;
    while (const QCursor *shown = QGuiApplication::overrideCursor()) {
        shapes.prepend(shown->shape());
        QGuiApplication::restoreOverrideCursor();
    }
    for (const Qt::CursorShape shape : shapes)
        QGuiApplication::setOverrideCursor(shape);
    return shapes;
}

void sendEnter(QWidget *widget)
{
    QEnterEvent event(QPointF(1, 1), QPointF(1, 1), QPointF(1, 1));
    QApplication::sendEvent(widget, &event);
}

void sendLeave(QWidget *widget)
{
    QEvent event(QEvent::Leave);
    QApplication::sendEvent(widget, &event);
}

/// Counts the events of one kind that reach an object.
class EventCount : public QObject
{
public:
    EventCount(QObject *watched, QEvent::Type counted)
        : type(counted)
    {
        watched->installEventFilter(this);
    }

    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == type ? 1 : 0;
        return false;
    }

    QEvent::Type type;
    int count = 0;
};

/// A dialogue with one label in it, and room beside it.
struct LabelDialogue
{
    explicit LabelDialogue(bool clickable = true)
        : dialogue(std::make_unique<QDialog>())
        , frame(new QFrame(dialogue.get()))
        , label(new QClickableLabel(frame, clickable))
    {
        dialogue->setGeometry(200, 200, 400, 200);
        frame->setGeometry(20, 20, 200, 100);
        label->setGeometry(20, 20, 100, 30);
        label->setText("About Qt");
    }

    bool show() const
    {
        dialogue->show();
        dialogue->activateWindow();
        return QTest::qWaitForWindowActive(dialogue.get());
    }

    QPoint onLabel() const { return label->mapTo(dialogue.get(), label->rect().center()); }
    QPoint beside() const { return QPoint(350, 170); }

    /// Moves the mouse to and fro by a pixel until something is so: a platform may overlook a mouse that
    /// jumps while a window comes or goes, until it moves again.
    template<typename Something>
    bool mouseMakes(const Something &isSo, const QPoint &place) const
    {
        int step = 0;
        return QTest::qWaitFor([&] {
            QCursor::setPos(dialogue->mapToGlobal(place) + QPoint(step ^= 1, 0));
            QCoreApplication::processEvents();
            return isSo();
        });
    }
    bool showsHand() const
    {
        return mouseMakes([] { return cursors() == WithHand; }, onLabel());
    }
    bool showsNoHandBeside() const
    {
        return mouseMakes([] { return cursors() == Before; }, beside());
    }

    QWindow *window() const { return dialogue->windowHandle(); }

    std::unique_ptr<QDialog> dialogue;
    QFrame *frame;
    QPointer<QClickableLabel> label;
};

} // namespace

class TestQClickableLabel : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void startsEmptyWithTheNumberZero();
    void looksLikeALinkWhenClickable();
    void looksLikeALabelWhenNotClickable();
    void drawsBlueUnderlinedText();
    void setValueShowsAndReportsTheNumber_data();
    void setValueShowsAndReportsTheNumber();
    void anotherTextLeavesTheNumber();
    void theFontStillReachesTheText();

    void everyButtonReports_data();
    void everyButtonReports();
    void aReleaseAloneReportsAndAPressAloneDoesNot();
    void aDoubleClickReportsTwice();
    void aReleaseBesideTheLabelReports();
    void theParentSeesNoRelease();
    void aDisabledLabelReportsNothing();
    void mayBeDeletedByWhoeverIsTold_data();
    void mayBeDeletedByWhoeverIsTold();

    void aLinkIsReachedByTabAndPressedByKey_data();
    void aLinkIsReachedByTabAndPressedByKey();
    void otherKeysPressNothing();
    void aLabelThatIsNoLinkIsNotReachedByKey();
    void theKeyThatPressesMayDeleteIt();
    void aLinkShowsThatItHasTheKeyboard();
    void onADarkWindowALinkStandsOnALightGround();

    void showsTheHandWhileTheMouseIsOverIt();
    void showsTheHandOnEveryVisit();
    void showsNoHandWhenNotClickable();
    void theHandStaysWhileTheButtonIsPressed();
    void aSecondEnterPushesNothing();
    void aLeaveWithoutAnEnterRestoresNothing();
    void twoLabelsPushTheirOwn();
    void aClosingKeyRestoresTheCursor();
    void closingUnderTheMouseRestoresTheCursor();
    void qtsAboutBoxLeavesTheCursorsBalanced();
    void vanishingUnderTheMouseRestoresOnce_data();
    void vanishingUnderTheMouseRestoresOnce();
    void vanishingAfterTwoEntersRestoresOnce_data();
    void vanishingAfterTwoEntersRestoresOnce();
    void vanishingWithoutTheMouseRestoresNothing_data();
    void vanishingWithoutTheMouseRestoresNothing();
    void aLabelNeverShownRestoresToo_data();
    void aLabelNeverShownRestoresToo();
    void showsTheHandAgainAfterItCameBack();
    void switchingOnUnderTheMouseRestoresNothing();
    void theCursorOfAnotherLabelStaysWhenALateLeaveComes();
};

void TestQClickableLabel::init()
{
    QCOMPARE(cursors(), Cursors());
    QCursor::setPos(5, 5);
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
}

void TestQClickableLabel::cleanup()
{
    const Cursors left = cursors();
    while (QGuiApplication::overrideCursor())
        QGuiApplication::restoreOverrideCursor();
    QCOMPARE(left, Before);
}

void TestQClickableLabel::startsEmptyWithTheNumberZero()
{
    QWidget parent;
    auto *label = new QClickableLabel(&parent, true);
    const QSignalSpy clicks(label, &QClickableLabel::clicked);
    QCOMPARE(label->parentWidget(), &parent);
    QVERIFY(!label->isWindow());
    QCOMPARE(label->text(), QString());
    QTest::mouseRelease(label, Qt::LeftButton);
    QCOMPARE(clicks, (QList<QVariantList>{{0}}));
}

void TestQClickableLabel::looksLikeALinkWhenClickable()
{
    const QClickableLabel label(nullptr, true);
    QCOMPARE(label.styleSheet(), QString("QLabel { color : blue; text-decoration : underline; }"));
}

void TestQClickableLabel::looksLikeALabelWhenNotClickable()
{
    const QClickableLabel label(nullptr, false);
    QCOMPARE(label.styleSheet(), QString());
}

void TestQClickableLabel::drawsBlueUnderlinedText()
{
    const auto bluePixels = [](bool clickable) {
        QClickableLabel label(nullptr, clickable);
        label.setText("_______"); // strokes that lie whole on pixels, so that none is blended
        const QImage drawn = label.grab().toImage();
        int blue = 0;
        for (int y = 0; y < drawn.height(); ++y) {
            for (int x = 0; x < drawn.width(); ++x)
                blue += drawn.pixelColor(x, y) == QColor(Qt::blue) ? 1 : 0;
        }
        return blue;
    };
    QVERIFY(bluePixels(true) > 0);
    QCOMPARE(bluePixels(false), 0);
    QClickableLabel label(nullptr, true);
    label.ensurePolished();
    QVERIFY(label.font().underline());
}

void TestQClickableLabel::setValueShowsAndReportsTheNumber_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("negative") << -12 << "-12";
    QTest::newRow("zero") << 0 << "0";
    QTest::newRow("large") << 1234567 << "1234567";
    QTest::newRow("largest") << std::numeric_limits<int>::max() << "2147483647";
    QTest::newRow("least") << std::numeric_limits<int>::min() << "-2147483648";
}

void TestQClickableLabel::setValueShowsAndReportsTheNumber()
{
    QFETCH(int, value);
    QFETCH(QString, text);
    QClickableLabel label(nullptr, true);
    const QSignalSpy clicks(&label, &QClickableLabel::clicked);
    label.setValue(value);
    QCOMPARE(label.text(), text);
    QTest::mouseRelease(&label, Qt::LeftButton);
    QCOMPARE(clicks, (QList<QVariantList>{{value}}));
}

void TestQClickableLabel::anotherTextLeavesTheNumber()
{
    QClickableLabel label(nullptr, true);
    const QSignalSpy clicks(&label, &QClickableLabel::clicked);
    label.setValue(-12);
    label.setText("About Qt");
    QCOMPARE(label.text(), QString("About Qt"));
    QTest::mouseRelease(&label, Qt::LeftButton);
    QCOMPARE(clicks, (QList<QVariantList>{{-12}}));
}

void TestQClickableLabel::theFontStillReachesTheText()
{
    QClickableLabel label(nullptr, false);
    label.setText("About Qt");
    const int before = label.sizeHint().height();
    QFont large = label.font();
    large.setPointSize(60);
    label.setFont(large);
    QVERIFY(label.sizeHint().height() > before);
}

void TestQClickableLabel::everyButtonReports_data()
{
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::addColumn<bool>("clickable");
    for (const bool clickable : {true, false}) {
        const char *kind = clickable ? "clickable" : "not clickable";
        QTest::addRow("left, %s", kind) << Qt::LeftButton << clickable;
        QTest::addRow("right, %s", kind) << Qt::RightButton << clickable;
        QTest::addRow("middle, %s", kind) << Qt::MiddleButton << clickable;
        QTest::addRow("back, %s", kind) << Qt::BackButton << clickable;
        QTest::addRow("extra, %s", kind) << Qt::ExtraButton24 << clickable;
    }
}

void TestQClickableLabel::everyButtonReports()
{
    QFETCH(Qt::MouseButton, button);
    QFETCH(bool, clickable);
    QClickableLabel label(nullptr, clickable);
    const QSignalSpy clicks(&label, &QClickableLabel::clicked);
    label.setValue(7);
    QTest::mouseClick(&label, button);
    QCOMPARE(clicks, (QList<QVariantList>{{7}}));
}

void TestQClickableLabel::aReleaseAloneReportsAndAPressAloneDoesNot()
{
    QClickableLabel label(nullptr, true);
    const QSignalSpy clicks(&label, &QClickableLabel::clicked);
    QTest::mouseRelease(&label, Qt::LeftButton);
    QCOMPARE(clicks.size(), 1);
    QTest::mousePress(&label, Qt::LeftButton);
    QCOMPARE(clicks.size(), 1);
    QTest::mouseRelease(&label, Qt::LeftButton);
    QCOMPARE(clicks.size(), 2);
}

void TestQClickableLabel::aDoubleClickReportsTwice()
{
    const LabelDialogue shown;
    QVERIFY(shown.show());
    const QSignalSpy clicks(shown.label.data(), &QClickableLabel::clicked);
    QTest::mouseDClick(shown.window(), Qt::LeftButton, {}, shown.onLabel());
    QTRY_COMPARE(clicks.size(), 2);
}

void TestQClickableLabel::aReleaseBesideTheLabelReports()
{
    const LabelDialogue shown;
    QVERIFY(shown.show());
    const QSignalSpy clicks(shown.label.data(), &QClickableLabel::clicked);
    QTest::mousePress(shown.window(), Qt::LeftButton, {}, shown.onLabel());
    QTest::mouseMove(shown.window(), shown.beside());
    QTest::mouseRelease(shown.window(), Qt::LeftButton, {}, shown.beside());
    QCOMPARE(clicks.size(), 1);
}

void TestQClickableLabel::theParentSeesNoRelease()
{
    const LabelDialogue shown;
    QVERIFY(shown.show());
    const EventCount presses(shown.frame, QEvent::MouseButtonPress);
    const EventCount releases(shown.frame, QEvent::MouseButtonRelease);
    QTest::mouseClick(shown.window(), Qt::LeftButton, {}, shown.onLabel());
    QCOMPARE(presses.count, 1); // as with any label
    QCOMPARE(releases.count, 0);
}

void TestQClickableLabel::aDisabledLabelReportsNothing()
{
    QClickableLabel label(nullptr, true);
    const QSignalSpy clicks(&label, &QClickableLabel::clicked);
    label.setEnabled(false);
    QTest::mouseClick(&label, Qt::LeftButton);
    QCOMPARE(clicks.size(), 0);
}

void TestQClickableLabel::mayBeDeletedByWhoeverIsTold_data()
{
    QTest::addColumn<bool>("withItsDialogue");
    QTest::newRow("alone") << false;
    QTest::newRow("with its dialogue") << true;
}

void TestQClickableLabel::mayBeDeletedByWhoeverIsTold()
{
    QFETCH(bool, withItsDialogue);
    LabelDialogue shown;
    QVERIFY(shown.show());
    QVERIFY(shown.showsHand());
    connect(shown.label.data(), &QClickableLabel::clicked, this, [&] {
        if (withItsDialogue)
            shown.dialogue.reset();
        else
            delete shown.label.data();
    });
    QTest::mouseClick(shown.window(), Qt::LeftButton, {}, shown.onLabel());
    QVERIFY(!shown.label);
    QCOMPARE(cursors(), Before);
}

void TestQClickableLabel::showsTheHandWhileTheMouseIsOverIt()
{
    const LabelDialogue shown;
    QVERIFY(shown.show());
    QVERIFY(shown.showsNoHandBeside());
    QVERIFY(shown.showsHand());
    QCursor::setPos(QCursor::pos() + QPoint(5, 5));
    QCoreApplication::processEvents();
    QCOMPARE(cursors(), WithHand);
    QVERIFY(shown.showsNoHandBeside());
}

void TestQClickableLabel::showsTheHandOnEveryVisit()
{
    const LabelDialogue shown;
    QVERIFY(shown.show());
    for (int visit = 0; visit < 20; ++visit) {
        QVERIFY(shown.showsHand());
        QVERIFY(shown.showsNoHandBeside());
    }
}

void TestQClickableLabel::showsNoHandWhenNotClickable()
{
    const LabelDialogue shown(false);
    QVERIFY(shown.show());
    const EventCount enters(shown.label, QEvent::Enter);
    const EventCount leaves(shown.label, QEvent::Leave);
    QVERIFY(shown.mouseMakes([&] { return enters.count > 0; }, shown.onLabel()));
    QCOMPARE(cursors(), Before);
    QVERIFY(shown.mouseMakes([&] { return leaves.count > 0; }, shown.beside()));
    QCOMPARE(cursors(), Before);
}

void TestQClickableLabel::theHandStaysWhileTheButtonIsPressed()
{
    const LabelDialogue shown;
    QVERIFY(shown.show());
    QVERIFY(shown.showsHand());
    QTest::mouseClick(shown.window(), Qt::LeftButton, {}, shown.onLabel());
    QCOMPARE(cursors(), WithHand);
}

void TestQClickableLabel::aSecondEnterPushesNothing()
{
    QClickableLabel label(nullptr, true);
    sendEnter(&label);
    sendEnter(&label);
    QCOMPARE(cursors(), WithHand);
    sendLeave(&label);
    QCOMPARE(cursors(), Before);
    sendLeave(&label);
    QCOMPARE(cursors(), Before);
}

void TestQClickableLabel::aLeaveWithoutAnEnterRestoresNothing()
{
    QClickableLabel label(nullptr, true);
    sendLeave(&label);
    QCOMPARE(cursors(), Before);
}

void TestQClickableLabel::twoLabelsPushTheirOwn()
{
    QClickableLabel first(nullptr, true);
    QClickableLabel second(nullptr, true);
    sendEnter(&first);
    sendEnter(&second);
    QCOMPARE(cursors(), WithHand + Cursors{Qt::PointingHandCursor});
    sendLeave(&first);
    QCOMPARE(cursors(), WithHand);
    sendLeave(&second);
    QCOMPARE(cursors(), Before);
}

void TestQClickableLabel::aClosingKeyRestoresTheCursor()
{
    const LabelDialogue shown;
    QVERIFY(shown.show());
    QVERIFY(shown.showsHand());
    QTest::keyClick(shown.dialogue.get(), Qt::Key_Escape);
    QVERIFY(!shown.dialogue->isVisible());
    QCOMPARE(cursors(), Before);
    QCoreApplication::processEvents();
    QCOMPARE(cursors(), Before);
}

void TestQClickableLabel::closingUnderTheMouseRestoresTheCursor()
{
    LabelDialogue shown;
    connect(shown.label.data(), &QClickableLabel::clicked, shown.dialogue.get(), &QDialog::accept);
    QTimer::singleShot(0, shown.dialogue.get(), [&] {
        if (shown.show() && shown.showsHand())
            QTest::mouseClick(shown.window(), Qt::LeftButton, {}, shown.onLabel());
        else
            shown.dialogue->reject();
    });
    QCOMPARE(shown.dialogue->exec(), int(QDialog::Accepted));
    QCOMPARE(cursors(), Before);
}

void TestQClickableLabel::qtsAboutBoxLeavesTheCursorsBalanced()
{
    const LabelDialogue shown;
    QVERIFY(shown.show());
    QVERIFY(shown.showsHand());
    QList<Cursors> behindTheBox;
    connect(shown.label.data(), &QClickableLabel::clicked, shown.dialogue.get(), [&] {
        QTimer::singleShot(0, shown.dialogue.get(), [&] {
            behindTheBox << cursors();
            QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Escape);
        });
        QMessageBox::aboutQt(shown.dialogue.get());
    });
    for (int visit = 1; visit <= 3; ++visit) {
        QTest::mouseClick(shown.window(), Qt::LeftButton, {}, shown.onLabel());
        QCOMPARE(behindTheBox.size(), visit);
        QVERIFY(behindTheBox.last() == Before || behindTheBox.last() == WithHand); // as the platform says
        QVERIFY(shown.showsNoHandBeside());
        QVERIFY(shown.showsHand());
    }
}

namespace {

using Way = void (*)(LabelDialogue &);

struct NamedWay
{
    const char *name;
    Way go;
};

/// Every way in which a label is taken from under the mouse without being left.
const NamedWay WaysOut[] = {
    {"hidden", [](LabelDialogue &shown) { shown.label->hide(); }},
    {"its parent hidden", [](LabelDialogue &shown) { shown.frame->hide(); }},
    {"its dialogue closed", [](LabelDialogue &shown) { shown.dialogue->close(); }},
    {"its dialogue hidden", [](LabelDialogue &shown) { shown.dialogue->hide(); }},
    {"switched off", [](LabelDialogue &shown) { shown.label->setEnabled(false); }},
    {"its parent switched off", [](LabelDialogue &shown) { shown.frame->setEnabled(false); }},
    {"its dialogue switched off", [](LabelDialogue &shown) { shown.dialogue->setEnabled(false); }},
    {"moved to another parent", [](LabelDialogue &shown) { shown.label->setParent(shown.dialogue.get()); }},
    {"deleted", [](LabelDialogue &shown) { delete shown.label.data(); }},
    {"its parent deleted", [](LabelDialogue &shown) { delete shown.frame; }},
    {"its dialogue deleted", [](LabelDialogue &shown) { shown.dialogue.reset(); }},
};

void addWaysOut(const QByteArray &except = QByteArray())
{
    QTest::addColumn<int>("way");
    for (int i = 0; i < int(sizeof(WaysOut) / sizeof(WaysOut[0])); ++i) {
        if (WaysOut[i].name != except)
            QTest::newRow(WaysOut[i].name) << i;
    }
}

} // namespace

void TestQClickableLabel::vanishingUnderTheMouseRestoresOnce_data()
{
    addWaysOut();
}

void TestQClickableLabel::vanishingUnderTheMouseRestoresOnce()
{
    QFETCH(int, way);
    LabelDialogue shown;
    QVERIFY(shown.show());
    QVERIFY(shown.showsHand());
    WaysOut[way].go(shown);
    QCOMPARE(cursors(), Before);
    if (shown.label)
        sendLeave(shown.label);
    QCOMPARE(cursors(), Before);
    QCursor::setPos(5, 5);
    QCoreApplication::processEvents();
    QCOMPARE(cursors(), Before);
}

void TestQClickableLabel::vanishingAfterTwoEntersRestoresOnce_data()
{
    addWaysOut();
}

void TestQClickableLabel::vanishingAfterTwoEntersRestoresOnce()
{
    QFETCH(int, way);
    LabelDialogue shown;
    QVERIFY(shown.show());
    sendEnter(shown.label);
    sendEnter(shown.label);
    WaysOut[way].go(shown);
    QCOMPARE(cursors(), Before);
}

void TestQClickableLabel::vanishingWithoutTheMouseRestoresNothing_data()
{
    addWaysOut();
}

void TestQClickableLabel::vanishingWithoutTheMouseRestoresNothing()
{
    QFETCH(int, way);
    LabelDialogue shown;
    QVERIFY(shown.show());
    WaysOut[way].go(shown);
    QCOMPARE(cursors(), Before);
}

void TestQClickableLabel::aLabelNeverShownRestoresToo_data()
{
    QTest::addColumn<int>("way");
    for (const char *name : {"switched off", "moved to another parent", "deleted"}) {
        for (int i = 0; i < int(sizeof(WaysOut) / sizeof(WaysOut[0])); ++i) {
            if (qstrcmp(WaysOut[i].name, name) == 0)
                QTest::newRow(name) << i;
        }
    }
}

void TestQClickableLabel::aLabelNeverShownRestoresToo()
{
    QFETCH(int, way);
    LabelDialogue unseen;
    sendEnter(unseen.label);
    QCOMPARE(cursors(), WithHand);
    WaysOut[way].go(unseen);
    QCOMPARE(cursors(), Before);
}

void TestQClickableLabel::showsTheHandAgainAfterItCameBack()
{
    const LabelDialogue shown;
    QVERIFY(shown.show());
    QVERIFY(shown.showsHand());
    shown.dialogue->hide();
    QCOMPARE(cursors(), Before);
    QCursor::setPos(5, 5);
    QVERIFY(shown.show());
    QVERIFY(shown.showsHand());
    QVERIFY(shown.showsNoHandBeside());
}

void TestQClickableLabel::switchingOnUnderTheMouseRestoresNothing()
{
    QClickableLabel label(nullptr, true);
    label.setEnabled(false);
    sendEnter(&label);
    QCOMPARE(cursors(), WithHand);
    label.setEnabled(true);
    QCOMPARE(cursors(), WithHand);
    sendLeave(&label);
    QCOMPARE(cursors(), Before);
}

void TestQClickableLabel::theCursorOfAnotherLabelStaysWhenALateLeaveComes()
{
    const LabelDialogue shown;
    QVERIFY(shown.show());
    QClickableLabel other(nullptr, true);
    sendEnter(shown.label);
    shown.label->hide();
    sendEnter(&other);
    sendLeave(shown.label);
    QCOMPARE(cursors(), WithHand);
    sendLeave(&other);
    QCOMPARE(cursors(), Before);
}

void TestQClickableLabel::aLinkIsReachedByTabAndPressedByKey_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("space") << int(Qt::Key_Space);
    QTest::newRow("return") << int(Qt::Key_Return);
    QTest::newRow("enter") << int(Qt::Key_Enter);
}

void TestQClickableLabel::aLinkIsReachedByTabAndPressedByKey()
{
    QFETCH(int, key);
    const LabelDialogue shown;
    QVERIFY(shown.show());
    shown.label->setValue(7);
    QTest::keyClick(shown.dialogue.get(), Qt::Key_Tab);
    QVERIFY(shown.label->hasFocus());
    QSignalSpy clicked(shown.label, &QClickableLabel::clicked);
    QTest::keyClick(shown.label, static_cast<Qt::Key>(key));
    QCOMPARE(clicked.count(), 1);
    QCOMPARE(clicked.first().first().toInt(), 7);
    QVERIFY(shown.dialogue->isVisible()); // the key went no further
}

void TestQClickableLabel::otherKeysPressNothing()
{
    const LabelDialogue shown;
    QVERIFY(shown.show());
    shown.label->setFocus();
    QSignalSpy clicked(shown.label, &QClickableLabel::clicked);
    QTest::keyClick(shown.label, Qt::Key_A);
    QTest::keyClick(shown.label, Qt::Key_Escape); // the dialogue's own
    QCOMPARE(clicked.count(), 0);
    QVERIFY(!shown.dialogue->isVisible());
}

void TestQClickableLabel::aLabelThatIsNoLinkIsNotReachedByKey()
{
    const LabelDialogue shown(false);
    QVERIFY(shown.show());
    QCOMPARE(shown.label->focusPolicy(), Qt::NoFocus);
    QSignalSpy clicked(shown.label, &QClickableLabel::clicked);
    QTest::keyClick(shown.label, Qt::Key_Space);
    QCOMPARE(clicked.count(), 0);
}

void TestQClickableLabel::theKeyThatPressesMayDeleteIt()
{
    const LabelDialogue shown;
    QVERIFY(shown.show());
    connect(shown.label, &QClickableLabel::clicked, shown.dialogue.get(), [&] { delete shown.label; });
    QTest::keyClick(shown.label, Qt::Key_Space);
    QVERIFY(!shown.label);
}

void TestQClickableLabel::aLinkShowsThatItHasTheKeyboard()
{
    const LabelDialogue shown;
    QVERIFY(shown.show());
    shown.label->clearFocus();
    const QImage without = shown.label->grab().toImage();
    QTest::keyClick(shown.dialogue.get(), Qt::Key_Tab);
    QVERIFY(shown.label->hasFocus());
    QVERIFY(shown.label->grab().toImage() != without);
}

void TestQClickableLabel::onADarkWindowALinkStandsOnALightGround()
{
    const QColor light(240, 240, 235);
    const QColor dark(40, 40, 45);
    for (const bool isDark : {false, true}) {
        const LabelDialogue shown;
        QPalette palette;
        palette.setColor(QPalette::Window, isDark ? dark : light);
        palette.setColor(QPalette::WindowText, isDark ? light : dark);
        shown.dialogue->setPalette(palette);
        QVERIFY(shown.show());
        QCOMPARE(shown.label->styleSheet(), QString("QLabel { color : blue; text-decoration : underline; }"));
        const QImage picture = shown.dialogue->grab(shown.label->geometry().translated(20, 20)).toImage();
        int lights = 0;
        int darks = 0;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                lights += picture.pixelColor(x, y) == light;
                darks += picture.pixelColor(x, y) == dark;
            }
        }
        QVERIFY(lights > 100);       // behind the text
        QCOMPARE(darks > 0, isDark); // beside it
    }
}

QTEST_MAIN(TestQClickableLabel)
#include "tst_qclickablelabel.moc"
