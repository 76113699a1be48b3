// SPDX-License-Identifier: MIT
// The help menu: the usage box, the about box, and Qt's own about box behind its link.

#include "dialog_about.h"
#include "qclickablelabel.h"
#include "windowfixture.h"

#include <QApplication>
#include <QBoxLayout>
#include <QCursor>
#include <QLabel>
#include <QPointer>
#include <QTranslator>
#include <QtTest>

#include <functional>

namespace {

/// Marks whatever is translated.
class MarkingTranslator : public QTranslator
{
public:
    bool isEmpty() const override { return false; }
    QString translate(const char *, const char *text, const char *, int) const override
    {
        return QString("[%1]").arg(text);
    }
};

bool showsHand()
{
    return QApplication::overrideCursor() &&
           QApplication::overrideCursor()->shape() == Qt::PointingHandCursor;
}

/// Moves the mouse over a widget, to and fro by a pixel until `isSo`: a platform may overlook a mouse that
/// jumps while a window comes or goes.
bool mouseOver(const QWidget *widget, const std::function<bool()> &isSo)
{
    int step = 0;
    return QTest::qWaitFor([&] {
        QCursor::setPos(widget->mapToGlobal(widget->rect().center()) + QPoint(step ^= 1, 0));
        QCoreApplication::processEvents();
        return isSo();
    });
}

} // namespace

class TestHelp : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void usageTellsOfMouseAndShortcuts();
    void usageIsAModalBoxWithOneButton();
    void usageIsTranslatedWhole();
    void theAboutBoxHasTheLogoBesideFiveLines();
    void theAboutBoxIsModalAndOfOneSize();
    void theAboutBoxIsGoneWhenItHasClosed();
    void onlyAboutQtIsTranslated();
    void aClickOnAboutQtOpensQtsOwnBox();
    void closingByKeyUnderTheMouseTakesTheHandBack();
    void qtsOwnBoxTakesNoHandAway();

private:
    void useUsageBox(const std::function<void(QMessageBox &)> &look) const;
    void useAboutBox(const std::function<void(Dialog_About &)> &look) const;
    void moveBesideTheWindow(QWidget &dialogue) const;

    WindowFixture bench;
};

void TestHelp::init()
{
    bench.resetBench();
    bench.showWindow();
    QCursor::setPos(1, 1);
}

void TestHelp::cleanup()
{
    bench.window.reset();
    QVERIFY(!QApplication::overrideCursor());
}

void TestHelp::useUsageBox(const std::function<void(QMessageBox &)> &look) const
{
    bool seen = false;
    WindowDriver::whenModal([&](QWidget *modal) {
        auto *box = qobject_cast<QMessageBox *>(modal);
        QVERIFY(box);
        look(*box);
        seen = true;
        box->close();
    });
    bench.driver->trigger("usageAction");
    QVERIFY(seen);
}

/// Opens the about box, which is closed after `look` if it did not do so itself.
void TestHelp::useAboutBox(const std::function<void(Dialog_About &)> &look) const
{
    bool seen = false;
    WindowDriver::whenModal([&](QWidget *modal) {
        const QPointer<Dialog_About> about = qobject_cast<Dialog_About *>(modal);
        QVERIFY(about);
        look(*about);
        seen = true;
        if (about)
            about->close();
    });
    bench.driver->trigger("aboutAction");
    QVERIFY(seen);
}

/// Without a display, the mouse meets whichever of two windows was opened first, not the upper one.
void TestHelp::moveBesideTheWindow(QWidget &dialogue) const
{
    dialogue.move(bench.window->frameGeometry().topRight() + QPoint(30, 30));
}

void TestHelp::usageTellsOfMouseAndShortcuts()
{
    useUsageBox([](const QMessageBox &box) {
        QCOMPARE(box.windowTitle(), QString("Usage"));
        QCOMPARE(box.text(), QString("Kelvo Speckmend - Usage\n"
                                     "\n"
                                     "Navigation:\n"
                                     "\n"
                                     "Right mouse button: Drag to move image\n"
                                     "Arrow keys: Click once into magnifier to move focus pixel by pixel\n"
                                     "\n"
                                     "Shortcuts:\n"
                                     "\n"
                                     "Ctrl+A\t Add a hot pixel to the list\n"
                                     "Del\t Removes a hot pixel from the list\n"));
        QVERIFY(box.informativeText().isEmpty());
        QVERIFY(box.detailedText().isEmpty());
    });
    // The shortcuts that it names are those of the commands.
    for (const char *name : {"addBadpixelAction", "deleteBadpixelAction"}) {
        const QString keys = bench.driver->action(name)->shortcut().toString(QKeySequence::NativeText);
        useUsageBox([&](const QMessageBox &box) { QVERIFY(box.text().contains(keys + "\t ")); });
    }
}

void TestHelp::usageIsAModalBoxWithOneButton()
{
    useUsageBox([this](QMessageBox &box) {
        QCOMPARE(box.icon(), QMessageBox::NoIcon);
        QVERIFY(box.iconPixmap().isNull());
        QCOMPARE(box.standardButtons(), QMessageBox::StandardButtons(QMessageBox::Close));
        QCOMPARE(box.buttons().size(), 1);
        QVERIFY(box.isModal());
        QCOMPARE(box.windowModality(), Qt::ApplicationModal);
        QCOMPARE(box.parentWidget(), static_cast<QWidget *>(bench.window.get()));
        QVERIFY(box.windowFlags().testFlag(Qt::MSWindowsFixedSizeDialogHint));
        const QMessageBox usual(QMessageBox::NoIcon, "", "", QMessageBox::Close, bench.window.get());
        QCOMPARE(box.windowFlags(), usual.windowFlags());
    });
    // Escape and the button both end it.
    useUsageBox([](QMessageBox &box) {
        QTest::keyClick(&box, Qt::Key_Escape);
        QVERIFY(!box.isVisible());
    });
    useUsageBox([](QMessageBox &box) {
        box.button(QMessageBox::Close)->click();
        QVERIFY(!box.isVisible());
    });
}

void TestHelp::usageIsTranslatedWhole()
{
    MarkingTranslator translator;
    QCoreApplication::installTranslator(&translator);
    QString title;
    QString text;
    useUsageBox([&](const QMessageBox &box) {
        title = box.windowTitle();
        text = box.text();
    });
    QCoreApplication::removeTranslator(&translator);
    QCOMPARE(title, QString("[Usage]"));
    QVERIFY2(text.startsWith("[Kelvo Speckmend - Usage\n"), qPrintable(text));
    QVERIFY2(text.endsWith("from the list\n]"), qPrintable(text));
}

void TestHelp::theAboutBoxHasTheLogoBesideFiveLines()
{
    useAboutBox([](Dialog_About &about) {
        QCOMPARE(about.windowTitle(), QString("About Kelvo Speckmend"));
        auto *columns = qobject_cast<QBoxLayout *>(about.layout());
        QVERIFY(columns);
        QCOMPARE(columns->direction(), QBoxLayout::LeftToRight);
        QCOMPARE(columns->count(), 2);
        const auto *logo = qobject_cast<QLabel *>(columns->itemAt(0)->widget());
        QVERIFY(logo);
        const QPixmap picture(":/res/about_logo_kelvo.png");
        QVERIFY(!picture.isNull());
        QCOMPARE(logo->property("pixmap").value<QPixmap>().toImage(), picture.toImage());

        const auto *lines = qobject_cast<QBoxLayout *>(columns->itemAt(1)->layout());
        QVERIFY(lines);
        QCOMPARE(lines->direction(), QBoxLayout::TopToBottom);
        QCOMPARE(lines->count(), 5);
        QStringList texts;
        int bottom = -1;
        for (int i = 0; i < lines->count(); ++i) {
            const auto *line = qobject_cast<QLabel *>(lines->itemAt(i)->widget());
            QVERIFY(line);
            QVERIFY(line->geometry().top() > bottom);
            QVERIFY(line->geometry().left() > logo->geometry().right());
            bottom = line->geometry().bottom();
            QCOMPARE(qobject_cast<const QClickableLabel *>(line) != nullptr, i == 4);
            texts << line->text();
        }
        QCOMPARE(texts.at(0), QString("Kelvo Speckmend"));
        QCOMPARE(texts.at(1), QString("Version: 4.95.1.0"));
        QVERIFY(!texts.at(2).isEmpty()); // the maker's lines
        QVERIFY(!texts.at(3).isEmpty());
        QCOMPARE(texts.at(4), QString("About Qt"));
        QCOMPARE(about.findChildren<QLabel *>().size(), 6);
    });
}

void TestHelp::theAboutBoxIsModalAndOfOneSize()
{
    useAboutBox([this](Dialog_About &about) {
        QVERIFY(about.isModal());
        QCOMPARE(about.windowModality(), Qt::ApplicationModal);
        QCOMPARE(about.parentWidget(), static_cast<QWidget *>(bench.window.get()));
        QCOMPARE(about.minimumSize(), about.maximumSize());
        QCOMPARE(about.size(), about.minimumSize());
        QCOMPARE(about.minimumSize(), about.sizeHint());
        QVERIFY(!about.windowFlags().testFlag(Qt::WindowContextHelpButtonHint));
        QCOMPARE(about.windowFlags() | Qt::WindowContextHelpButtonHint, QDialog().windowFlags());
    });
}

void TestHelp::theAboutBoxIsGoneWhenItHasClosed()
{
    QPointer<Dialog_About> opened;
    useAboutBox([&](Dialog_About &about) { opened = &about; });
    QVERIFY(!opened);
    QCOMPARE(bench.window->findChildren<QDialog *>().size(), 0);
}

void TestHelp::onlyAboutQtIsTranslated()
{
    MarkingTranslator translator;
    QCoreApplication::installTranslator(&translator);
    QStringList translated;
    QString title;
    useAboutBox([&](Dialog_About &about) {
        title = about.windowTitle();
        for (const QLabel *label : about.findChildren<QLabel *>()) {
            if (label->text().contains('['))
                translated << label->text();
        }
    });
    QCoreApplication::removeTranslator(&translator);
    QCOMPARE(title, QString("About Kelvo Speckmend"));
    QCOMPARE(translated, QStringList{"[About Qt]"});
}

void TestHelp::aClickOnAboutQtOpensQtsOwnBox()
{
    useAboutBox([](Dialog_About &about) {
        QString title;
        QWidget *parent = nullptr;
        bool modal = false;
        WindowDriver::whenModal([&](QWidget *box) {
            title = box->windowTitle();
            parent = box->parentWidget();
            modal = box->isModal();
            box->close();
        });
        QTest::mouseClick(about.findChild<QClickableLabel *>(), Qt::LeftButton);
        QCOMPARE(title, QString("About Qt"));
        QCOMPARE(parent, static_cast<QWidget *>(&about));
        QVERIFY(modal);
        QVERIFY(about.isVisible());
    });
}

void TestHelp::closingByKeyUnderTheMouseTakesTheHandBack()
{
    useAboutBox([this](Dialog_About &about) {
        moveBesideTheWindow(about);
        QVERIFY(mouseOver(about.findChild<QClickableLabel *>(), showsHand));
        QTest::keyClick(&about, Qt::Key_Escape);
        QVERIFY(!about.isVisible());
    });
    QVERIFY(!QApplication::overrideCursor());
}

/// While Qt's box is open, and when it has closed over the link, at most one hand is on the stack of cursors.
void TestHelp::qtsOwnBoxTakesNoHandAway()
{
    useAboutBox([this](Dialog_About &about) {
        moveBesideTheWindow(about);
        auto *link = about.findChild<QClickableLabel *>();
        for (int round = 0; round < 3; ++round) {
            QVERIFY(mouseOver(link, showsHand));
            WindowDriver::whenModal([](QWidget *box) { box->close(); });
            QTest::mouseClick(link, Qt::LeftButton);
            QCursor::setPos(1, 1); // without a display, only a mouse that leaves the window enters it again
        }
        QVERIFY(mouseOver(link, showsHand));
        QVERIFY(mouseOver(about.findChild<QLabel *>("nameLabel"),
                          [] { return !QApplication::overrideCursor(); }));
        QVERIFY(mouseOver(link, showsHand));
        QTest::keyClick(&about, Qt::Key_Escape);
    });
    QVERIFY(!QApplication::overrideCursor());
}

QTEST_MAIN(TestHelp)
#include "tst_help.moc"
