// SPDX-License-Identifier: MIT
// The whole window with a German translator: what is translated is German, what is meant to stay stays.
//
// Every scene is played twice, without and with the translator, and the texts are compared one by one. A text
// must be in the translation source or be named below as one that stays; one that is neither was forgotten.

#include "app/windowfixture.h"
#include "catalogue.h"
#include "shown.h"

#include "detectiondialogue.h"
#include "displaywidget.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QRegularExpression>
#include <QSet>
#include <QStyleOptionViewItem>
#include <QToolBar>
#include <QTranslator>
#include <QtTest>

#include <memory>

namespace {

/// Texts that are not translated, as "place|text": numbers, names, failures, and what is meant to stay
/// English.
const char *const Staying[] = {
    "cameraTable.cell\\|(\\d+|KV.*)",
    "badpixelTable.cell\\|(\\d+|user|factory|ignore)",
    "userCountLabel.text\\|U: \\d+",
    "factoryCountLabel.text\\|F: \\d+",
    "xLabel.text\\|x: \\d+",
    "yLabel.text\\|y: \\d+",
    "framesLabel.text\\|Frames: \\d+",
    "failedLabel.text\\|Failed: \\d+",
    "frameRateLabel.text\\|FPS: \\d+(\\.\\d\\d)?",
    "QLabel.text\\|([RGB]|\\d+)",
    "(QSpinBox|QDoubleSpinBox|SignedStepSpinBox|QProgressBar).text\\|[\\d.,]+%?",
    "Dialog_About.windowTitle\\|About Kelvo Speckmend",
    "nameLabel.text\\|Kelvo Speckmend",
    "versionLabel.text\\|Version: 4\\.95\\.1\\.0",
    "QLabel.text\\|(For the cameras of the Kelvo family, made by|Kelvo Camera Works)",
    "QLabel.text\\|Hot pixel detected: [1-9]\\d*",
    "QPushButton.text\\|Start",
    "QPushButton.text\\|&?(OK|Yes|No|Close)", // Qt's own
    "QLabel.text\\|No images acquired for hot pixel detection\\. Please restart detection\\.",
    "message\\|(No images acquired for hot pixel detection\\.|Error writing hotpixel list)",
    "message\\|Could not initialize camera\\.",
    "message\\|Upload of new firmware required\\. \\(approx\\. \\d+ seconds\\)",
    "QMessageBox.text\\|Error writing hotpixel list",
    "QMessageBox.text\\|(write to|load from) file failed with \\d+\n",
};

bool stays(const Shown &text)
{
    static const QRegularExpression any = [] {
        QStringList all;
        for (const char *pattern : Staying)
            all << QString("(?:%1)").arg(pattern);
        return QRegularExpression("\\A(?:" + all.join('|') + ")\\z");
    }();
    return any.match(text.where + '|' + text.text).hasMatch();
}

QString key(const QString &context, const QString &source)
{
    return context + ": " + source;
}

/// The compiled translation; notes what the program asked it for.
class German final : public QTranslator
{
public:
    German()
    {
        if (!load(GERMAN_COMPILED))
            qFatal("%s cannot be loaded: install qttools5-dev-tools and build anew", GERMAN_COMPILED);
        QCoreApplication::installTranslator(this);
    }
    ~German() override { QCoreApplication::removeTranslator(this); }

    QString translate(const char *context, const char *source, const char *note, int n) const override
    {
        if (*context != 'Q') // Qt's own have translations of their own
            asked.insert(key(context, source));
        return QTranslator::translate(context, source, note, n);
    }

    mutable QSet<QString> asked;
};

/// English texts and their German ones, also as buttons show them, without mnemonics and dots, and with the
/// keys of the usage filled in.
QMultiHash<QString, QString> germanTexts()
{
    const auto plain = [](QString text) { return text.remove('&').remove("..."); };
    const QString add = QKeySequence(Qt::CTRL + Qt::Key_A).toString(QKeySequence::NativeText);
    const QString remove = QKeySequence(Qt::Key_Delete).toString(QKeySequence::NativeText);
    QMultiHash<QString, QString> texts;
    for (const catalogue::Message &message : catalogue::read(GERMAN_SOURCE)) {
        texts.insert(message.source, message.translation);
        texts.insert(plain(message.source), plain(message.translation));
        if (message.source.contains("%1"))
            texts.insert(message.source.arg(add, remove), message.translation.arg(add, remove));
    }
    return texts;
}

QChar mnemonicOf(const QString &text)
{
    const int mark = QString(text).replace("&&", "--").indexOf('&');
    return mark < 0 ? QChar() : text.at(mark + 1).toLower();
}

void closeNextPopup()
{
    auto *timer = new QTimer;
    QObject::connect(timer, &QTimer::timeout, timer, [timer] {
        if (QWidget *popup = QApplication::activePopupWidget()) {
            timer->deleteLater();
            popup->close();
        }
    });
    timer->start(5);
}

} // namespace

class TestGermanWindow : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { bench.window.reset(); }

    void theTextsOf_data();
    void theTextsOf();
    void theScenesShowEveryTranslatedText();
    void aTextThatStaysIsNotInTheTranslation();
    void mnemonicsOfAMenuDiffer();
    void shortcutsAreTheSameInGerman();
    void aLateTranslatorReachesTheFormAlone();

private:
    using Scene = void (TestGermanWindow::*)();

    // scenes: each adds what it shows to `texts`
    void theWindowAtStart();
    void anOpenCamera();
    void theClosedCamera();
    void theAboutBox();
    void theUsageBox();
    void theDetectionDialogue();
    void aFailedDetection();
    void theLightLeakBox();
    void aCameraWithoutStorage();
    void writingTheList();
    void theFileDialogues();
    void failingFiles();
    void theEditorOfTheClass();
    void theImageIsTooBig();
    void messagesOfTheCamera();
    static const QMap<QString, Scene> &scenes();

    Texts play(Scene scene)
    {
        texts.clear();
        bench.resetBench();
        (this->*scene)();
        bench.window.reset();
        return texts;
    }
    void showAll() { shown::collect(texts, *bench.window); }
    void showMessage() { shown::add(texts, "message", bench.driver->message()); }

    /// Shows the next modal window and closes it.
    void showModal()
    {
        WindowDriver::whenModal([this](QWidget *modal) {
            shown::collect(texts, *modal);
            modal->close();
        });
    }
    void showChoosing(const QString &file)
    {
        WindowDriver::chooseFile(file,
                                 [this](const QFileDialog &dialogue) { shown::collect(texts, dialogue); });
    }
    void inDetection(const std::function<void(DetectionDialogue *)> &visit);
    void feed(int count, std::uint8_t grey);

    WindowFixture bench;
    Texts texts;
};

const QMap<QString, TestGermanWindow::Scene> &TestGermanWindow::scenes()
{
    static const QMap<QString, Scene> all{
        {"the window at start", &TestGermanWindow::theWindowAtStart},
        {"an open camera", &TestGermanWindow::anOpenCamera},
        {"the closed camera", &TestGermanWindow::theClosedCamera},
        {"the about box", &TestGermanWindow::theAboutBox},
        {"the usage box", &TestGermanWindow::theUsageBox},
        {"the detection dialogue", &TestGermanWindow::theDetectionDialogue},
        {"a failed detection", &TestGermanWindow::aFailedDetection},
        {"the light leak box", &TestGermanWindow::theLightLeakBox},
        {"a camera without storage", &TestGermanWindow::aCameraWithoutStorage},
        {"writing the list", &TestGermanWindow::writingTheList},
        {"the file dialogues", &TestGermanWindow::theFileDialogues},
        {"failing files", &TestGermanWindow::failingFiles},
        {"the editor of the class", &TestGermanWindow::theEditorOfTheClass},
        {"an image that is too big", &TestGermanWindow::theImageIsTooBig},
        {"messages of the camera", &TestGermanWindow::messagesOfTheCamera},
    };
    return all;
}

void TestGermanWindow::theWindowAtStart()
{
    bench.showWindow();
    showAll();
}

void TestGermanWindow::anOpenCamera()
{
    kelvosim::setUsedElsewhere("KVBAYER", true);
    bench.showWindow();
    bench.open(bench.mono);
    QTRY_VERIFY(bench.enabled("closeCameraAction"));
    bench.pushFlat(bench.mono, 30);
    QTRY_COMPARE(bench.driver->display()->widget()->width(), 96);
    bench.moveTo(QPoint(33, 44));
    bench.driver->trigger("addBadpixelAction");
    bench.invoke("updateStatus");
    showAll();
}

void TestGermanWindow::theClosedCamera()
{
    bench.showWindow();
    bench.open(bench.mono);
    bench.driver->trigger("closeCameraAction");
    showAll();
}

void TestGermanWindow::theAboutBox()
{
    bench.showWindow();
    showModal();
    bench.driver->trigger("aboutAction");
}

void TestGermanWindow::theUsageBox()
{
    bench.showWindow();
    showModal();
    bench.driver->trigger("usageAction");
}

void TestGermanWindow::inDetection(const std::function<void(DetectionDialogue *)> &visit)
{
    bench.showWindow();
    bench.open(bench.mono);
    WindowDriver::whenModal([&](QWidget *modal) {
        auto *dialogue = qobject_cast<DetectionDialogue *>(modal);
        QVERIFY(dialogue);
        shown::collect(texts, *dialogue);
        dialogue->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok)->click();
        shown::collect(texts, *dialogue);
        visit(dialogue);
        shown::collect(texts, *dialogue);
        dialogue->reject();
    });
    bench.driver->trigger("detectAction");
}

/// Frames of one grey value but for one hot pixel, each handled before the next.
void TestGermanWindow::feed(int count, std::uint8_t grey)
{
    std::vector<std::uint8_t> frame = WindowFixture::flatFrame(grey);
    frame[40 * 96 + 50] = 250;
    const auto handled = [] {
        int calls = 0;
        for (const kelvosim::Call &call : testcamera::callsNamed("vx_UnlockSeqBuf"))
            calls += call.returned ? 1 : 0;
        return calls;
    };
    for (int i = 0; i < count; ++i) {
        const int before = handled();
        QVERIFY(bench.push(bench.mono, frame));
        QVERIFY(WindowDriver::waitFor([&] { return handled() > before; }));
    }
}

void TestGermanWindow::theDetectionDialogue()
{
    inDetection([this](DetectionDialogue *) { feed(11, 4); });
}

void TestGermanWindow::aFailedDetection()
{
    inDetection([this](DetectionDialogue *) {
        bench.invoke("detectBadpixel"); // without frames
        showMessage();
    });
}

void TestGermanWindow::theLightLeakBox()
{
    inDetection([this](DetectionDialogue *) {
        bench.push(bench.mono, WindowFixture::flatFrame(200));
        bool shownBox = false;
        QTimer look;
        connect(&look, &QTimer::timeout, [&] {
            if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
                shown::collect(texts, *box);
                box->close();
                shownBox = true;
            }
        });
        look.start(5);
        QVERIFY(WindowDriver::waitFor([&] { return shownBox; }));
    });
}

void TestGermanWindow::aCameraWithoutStorage()
{
    bench.showWindow();
    showModal();
    bench.open(bench.plain);
    showModal();
    bench.invoke("writeBadpixelList");
}

void TestGermanWindow::writingTheList()
{
    bench.showWindow();
    bench.open(bench.mono);
    bench.driver->trigger("addBadpixelAction");
    kelvosim::failCall("vx_HotPixel", 1, 9, "EEPROM busy", 33036);
    WindowDriver::whenModal([this](QWidget *question) {
        shown::collect(texts, *question);
        WindowDriver::whenModal([this](QWidget *failure) {
            shown::collect(texts, *failure);
            failure->close();
        });
        qobject_cast<QMessageBox *>(question)->button(QMessageBox::Yes)->click();
    });
    bench.driver->trigger("writeListAction");
    showMessage();
}

void TestGermanWindow::theFileDialogues()
{
    bench.showWindow();
    for (const char *slot :
         {"saveBadpixelList", "loadBadpixelList", "exportBadpixelList", "importBadpixelList"}) {
        showChoosing(QString());
        bench.invoke(slot);
    }
}

void TestGermanWindow::failingFiles()
{
    bench.showWindow();
    bench.open(bench.mono);
    QTemporaryDir folder;
    QFile list(folder.filePath("list.bin"));
    QVERIFY(list.open(QIODevice::WriteOnly));
    kelvosim::failCall("vx_HotPixel", 1, 12, "no", 33027);
    WindowDriver::chooseFile(folder.filePath("new.bin"), [this](const QFileDialog &) { showModal(); });
    bench.invoke("saveBadpixelList");
    kelvosim::failCall("vx_HotPixel", 1, 12, "no", 33042);
    WindowDriver::chooseFile(list.fileName(), [this](const QFileDialog &) { showModal(); });
    bench.invoke("loadBadpixelList");
}

void TestGermanWindow::theEditorOfTheClass()
{
    bench.showWindow();
    bench.open(bench.mono);
    QTableView *table = bench.driver->badpixelTable();
    const std::unique_ptr<QWidget> editor(table->itemDelegateForColumn(2)->createEditor(
        nullptr, QStyleOptionViewItem(), table->model()->index(0, 2)));
    shown::collect(texts, *editor);
}

void TestGermanWindow::theImageIsTooBig()
{
    bench.showWindow();
    bench.invoke("updateScaleFactor", Q_ARG(int, 1));
    showMessage();
}

void TestGermanWindow::messagesOfTheCamera()
{
    bench.showWindow();
    kelvosim::failCall("vx_InitCamera", 1, 3, "");
    bench.open(bench.mono);
    showMessage();
    bench.open(bench.mono); // there is no parameter file in this folder
    showMessage();

    Camera camera;
    connect(&camera, &Camera::displayError,
            [this](const QString &text) { shown::add(texts, "message", text); });
    kelvosim::failCall("vx_InitCamera", 1, 184, ""); // wants a firmware upload
    camera.open(2);
    kelvosim::failCall("vx_LoadParameters", 1, 50, "");
    camera.loadParameters();
}

void TestGermanWindow::theTextsOf_data()
{
    QTest::addColumn<QString>("name");
    const QStringList names = scenes().keys();
    for (const QString &name : names)
        QTest::newRow(qPrintable(name)) << name;
}

void TestGermanWindow::theTextsOf()
{
    QFETCH(QString, name);
    const Texts english = play(scenes().value(name));
    const German translator;
    const Texts german = play(scenes().value(name));
    const QMultiHash<QString, QString> translations = germanTexts();
    QVERIFY(!english.isEmpty());
    QCOMPARE(german.size(), english.size());
    for (int i = 0; i < english.size(); ++i) {
        const Shown &was = english.at(i);
        const Shown &is = german.at(i);
        const QString both = is.where + ": '" + was.text + "', '" + is.text + '\'';
        QCOMPARE(is.where, was.where);
        if (stays(was)) {
            QVERIFY2(stays(is), qPrintable("should stay: " + both));
            continue;
        }
        QVERIFY2(translations.contains(was.text),
                 qPrintable("neither translated nor meant to stay: " + both));
        QVERIFY2(translations.values(was.text).contains(is.text), qPrintable("not German: " + both));
    }
}

void TestGermanWindow::theScenesShowEveryTranslatedText()
{
    const German translator;
    for (const Scene scene : scenes())
        play(scene);
    QSet<QString> known;
    for (const catalogue::Message &message : catalogue::read(GERMAN_SOURCE))
        known.insert(key(message.context, message.source));
    const auto list = [](const QSet<QString> &keys) { return QStringList(keys.begin(), keys.end()).join('\n'); };
    QVERIFY(!known.isEmpty());
    QCOMPARE(list(known - translator.asked), QString()); // extracted, but never shown
    QCOMPARE(list(translator.asked - known), QString()); // shown, but not extracted
}

void TestGermanWindow::aTextThatStaysIsNotInTheTranslation()
{
    const QStringList staying{"Start",
                              "U: %1",
                              "F: %1",
                              "x: %1",
                              "y: %1",
                              "Frames: %1",
                              "Failed: %1",
                              "FPS: ",
                              "Frames: 0",
                              "Failed: 0",
                              "FPS: 0",
                              "About %1",
                              "Version: %1",
                              "Hot pixel detected: %1",
                              " Please restart detection.",
                              "Upload of new firmware required. (approx. %1 seconds)"};
    for (const catalogue::Message &message : catalogue::read(GERMAN_SOURCE))
        QVERIFY2(!staying.contains(message.source), qPrintable(message.source));
}

void TestGermanWindow::mnemonicsOfAMenuDiffer()
{
    const German translator;
    bench.openOnFreshBench(bench.mono);
    bench.driver->trigger("addBadpixelAction");
    for (const char *slot : {"showCameraListContextMenu", "showBadpixelListContextMenu"}) {
        closeNextPopup();
        bench.invoke(slot, Q_ARG(QPoint, QPoint()));
    }
    QList<QList<QAction *>> menus{bench.window->menuBar()->actions()};
    for (const QAction *menu : bench.window->menuBar()->actions())
        menus << menu->menu()->actions();
    for (const QMenu *menu : bench.window->findChildren<QMenu *>(QString(), Qt::FindDirectChildrenOnly))
        menus << menu->actions();
    QCOMPARE(menus.size(), 7); // the bar, its three, the zoom levels, two context menus
    for (const QList<QAction *> &menu : menus) {
        QSet<QChar> taken;
        for (const QAction *action : menu) {
            const QChar mnemonic = mnemonicOf(action->text());
            QVERIFY2(!taken.contains(mnemonic), qPrintable(action->text()));
            if (!mnemonic.isNull())
                taken.insert(mnemonic);
        }
    }
}

void TestGermanWindow::shortcutsAreTheSameInGerman()
{
    const German translator;
    bench.openOnFreshBench(bench.mono);
    QCOMPARE(bench.driver->action("addBadpixelAction")->shortcut(), QKeySequence("Ctrl+A"));
    QCOMPARE(bench.driver->action("deleteBadpixelAction")->shortcut(), QKeySequence(Qt::Key_Delete));
    for (const QAction *action : bench.window->findChildren<QAction *>()) {
        if (action->objectName() != "addBadpixelAction" && action->objectName() != "deleteBadpixelAction")
            QVERIFY2(action->shortcut().isEmpty(), qPrintable(action->text()));
    }
}

void TestGermanWindow::aLateTranslatorReachesTheFormAlone()
{
    bench.resetBench();
    bench.showWindow();
    const German translator;
    const auto *bar = bench.window->findChild<QToolBar *>("mainToolBar");
    QTRY_COMPARE(bar->windowTitle(), QString("Werkzeugleiste"));
    QCOMPARE(bench.window->windowTitle(), QString("Speckmend")); // Kept: the form's own title
    QCOMPARE(bench.driver->action("openCameraAction")->text(), QString("&Open camera"));
}

QTEST_MAIN(TestGermanWindow)
#include "tst_germanwindow.moc"
