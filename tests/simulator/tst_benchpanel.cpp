// SPDX-License-Identifier: MIT
// Tests that the bench panel shows the bench file, changes single values of it and follows it.
#include "benchpanel.h"

#include <QCheckBox>
#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

namespace {

const QByteArray Text = "# Two cameras on the desk.\n"
                        "[camera KV00000001]\n"
                        "model = KV-1280M   # the old one\n"
                        "size = 1280 x 1024\n"
                        "attached = yes\n"
                        "lens cap = off     # take it off\n"
                        "in use = no\n"
                        "failed frames = 5\n"
                        "\n"
                        "[camera KV00000002]\n"
                        "kind = bayer\n"
                        "attached = no\n"
                        "lens cap = on\n";

QByteArray replaced(QByteArray text, const char *before, const char *after)
{
    return text.replace(before, after);
}

} // namespace

class TestBenchPanel : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void showsTheCamerasAndTheirStates();
    void aCheckBoxChangesItsValueAndNothingElse_data();
    void aCheckBoxChangesItsValueAndNothingElse();
    void aBurstAddsTenFailedFrames();
    void aResetGrowsTheCounterOfResets();
    void fullCountersStay();
    void aValueThatIsNotThereIsAdded();
    void editsByHandAreFollowed();
    void aReplacedFileIsFollowed();
    void anEditByHandAMomentAgoIsNotLost();
    void otherCamerasGetOtherRows();
    void aMistakeIsReportedAndControlsRest();
    void aClickOnAFileThatBrokeAMomentAgoChangesNothing();
    void aMissingFileIsReported();
    void noFileAtAllIsReported();
    void aFileWithoutCamerasIsReported();
    void aFailedWriteIsReportedAndTheBoxGoesBack();
    void aCameraThatIsGoneIsReported();

private:
    QString path() const { return folder->filePath(fileName); }
    QByteArray content() const;
    void write(const QByteArray &text) const;
    QCheckBox *box(const QString &name) const { return panel->findChild<QCheckBox *>(name); }
    QPushButton *button(const QString &name) const { return panel->findChild<QPushButton *>(name); }
    QString problem() const;
    void open();

    QString fileName;
    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<BenchPanel> panel;
};

void TestBenchPanel::init()
{
    fileName = "cameras.bench";
    folder = std::make_unique<QTemporaryDir>();
    QVERIFY(folder->isValid());
    write(Text);
    open();
}

void TestBenchPanel::cleanup()
{
    panel.reset();
    folder.reset();
}

void TestBenchPanel::open()
{
    panel = std::make_unique<BenchPanel>(path());
    panel->show();
}

QByteArray TestBenchPanel::content() const
{
    QFile file(path());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void TestBenchPanel::write(const QByteArray &text) const
{
    QFile file(path());
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(text), qint64(text.size()));
}

/// The problem that a person sees; empty when none is shown.
QString TestBenchPanel::problem() const
{
    const auto *label = panel->findChild<QLabel *>("problem");
    return label->isVisible() ? label->text() : QString();
}

void TestBenchPanel::showsTheCamerasAndTheirStates()
{
    QCOMPARE(panel->windowTitle(), QString("Simulated cameras"));
    QVERIFY(box("KV00000001 Attached")->isChecked());
    QVERIFY(!box("KV00000001 Lens cap")->isChecked());
    QVERIFY(!box("KV00000001 In use")->isChecked());
    QVERIFY(!box("KV00000002 Attached")->isChecked());
    QVERIFY(box("KV00000002 Lens cap")->isChecked());
    QVERIFY(problem().isEmpty());
    QCOMPARE(content(), Text);
}

void TestBenchPanel::aCheckBoxChangesItsValueAndNothingElse_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::newRow("attached") << "KV00000001 Attached" << QByteArray("attached = yes")
                              << QByteArray("attached = no");
    QTest::newRow("lens cap") << "KV00000001 Lens cap" << QByteArray("lens cap = off ")
                              << QByteArray("lens cap = on ");
    QTest::newRow("in use") << "KV00000001 In use" << QByteArray("in use = no") << QByteArray("in use = yes");
    QTest::newRow("other camera") << "KV00000002 Attached" << QByteArray("attached = no")
                                  << QByteArray("attached = yes");
}

void TestBenchPanel::aCheckBoxChangesItsValueAndNothingElse()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    const bool checked = box(name)->isChecked();
    box(name)->click();
    QCOMPARE(content(), replaced(Text, before, after));
    QCOMPARE(box(name)->isChecked(), !checked);
    box(name)->click();
    QCOMPARE(content(), Text);
    QCOMPARE(box(name)->isChecked(), checked);
}

void TestBenchPanel::aBurstAddsTenFailedFrames()
{
    button("KV00000001 burst")->click();
    QCOMPARE(content(), replaced(Text, "failed frames = 5", "failed frames = 15"));
    button("KV00000001 burst")->click();
    QCOMPARE(content(), replaced(Text, "failed frames = 5", "failed frames = 25"));
}

void TestBenchPanel::aResetGrowsTheCounterOfResets()
{
    write(Text + "list resets = 7 # so far\n");
    button("KV00000002 reset")->click();
    QCOMPARE(content(), Text + "list resets = 8 # so far\n");
}

void TestBenchPanel::fullCountersStay()
{
    const QByteArray full = replaced(Text, "failed frames = 5", "failed frames = 4294967290");
    write(full);
    button("KV00000001 burst")->click();
    button("KV00000001 burst")->click();
    QCOMPARE(content(), replaced(Text, "failed frames = 5", "failed frames = 4294967295"));
    QVERIFY(problem().isEmpty());
}

void TestBenchPanel::aValueThatIsNotThereIsAdded()
{
    box("KV00000002 In use")->click();
    button("KV00000002 burst")->click();
    button("KV00000002 reset")->click();
    QCOMPARE(content(), Text + "in use = yes\nfailed frames = 10\nlist resets = 1\n");
}

void TestBenchPanel::editsByHandAreFollowed()
{
    write(replaced(Text, "in use = no", "in use = yes"));
    QTRY_VERIFY(box("KV00000001 In use")->isChecked());
    write(Text);
    QTRY_VERIFY(!box("KV00000001 In use")->isChecked());
}

void TestBenchPanel::aReplacedFileIsFollowed()
{
    for (const char *state : {"yes", "no", "yes"}) {
        QFile fresh(folder->filePath("fresh"));
        QVERIFY(fresh.open(QIODevice::WriteOnly));
        fresh.write(replaced(Text, "in use = no", QByteArray("in use = ").append(state)));
        fresh.close();
        QVERIFY(QFile::remove(path()));
        QVERIFY(fresh.rename(path()));
        QTRY_COMPARE(box("KV00000001 In use")->isChecked(), QByteArray(state) == "yes");
    }
}

void TestBenchPanel::anEditByHandAMomentAgoIsNotLost()
{
    write(replaced(Text, "take it off", "dusty"));
    box("KV00000001 Attached")->click();
    QCOMPARE(content(), replaced(replaced(Text, "take it off", "dusty"), "attached = yes", "attached = no"));
}

void TestBenchPanel::otherCamerasGetOtherRows()
{
    write(replaced(Text, "KV00000002", "KV00000003"));
    QTRY_VERIFY(box("KV00000003 Lens cap"));
    QVERIFY(box("KV00000003 Lens cap")->isChecked());
    QTRY_VERIFY(!box("KV00000002 Lens cap"));
    box("KV00000003 Lens cap")->click();
    QCOMPARE(content(),
             replaced(replaced(Text, "KV00000002", "KV00000003"), "lens cap = on", "lens cap = off"));
}

void TestBenchPanel::aMistakeIsReportedAndControlsRest()
{
    write(replaced(Text, "in use = no", "in use = perhaps"));
    QTRY_VERIFY(problem().contains("line 7"));
    QVERIFY(problem().contains("perhaps"));
    QVERIFY(!box("KV00000001 In use")->isEnabled());
    QVERIFY(!button("KV00000001 burst")->isEnabled());
    write(replaced(Text, "in use = no", "in use = yes"));
    QTRY_VERIFY(problem().isEmpty());
    QVERIFY(box("KV00000001 In use")->isEnabled());
    QVERIFY(box("KV00000001 In use")->isChecked());
}

void TestBenchPanel::aClickOnAFileThatBrokeAMomentAgoChangesNothing()
{
    const QByteArray broken = replaced(Text, "in use = no", "in use = perhaps");
    write(broken);
    box("KV00000001 Attached")->click();
    QCOMPARE(content(), broken);
    QVERIFY(problem().contains("line 7"));
    QVERIFY(box("KV00000001 Attached")->isChecked());
}

void TestBenchPanel::aMissingFileIsReported()
{
    QVERIFY(QFile::remove(path()));
    QTRY_COMPARE(problem(), QString("The bench file cannot be read."));
    QVERIFY(!box("KV00000001 In use")->isEnabled());
    write(Text);
    QTRY_VERIFY(problem().isEmpty());
    QVERIFY(box("KV00000001 In use")->isEnabled());
}

void TestBenchPanel::noFileAtAllIsReported()
{
    panel = std::make_unique<BenchPanel>(QString());
    panel->show();
    QVERIFY(problem().contains("KELVOSIM_BENCH"));
}

void TestBenchPanel::aFileWithoutCamerasIsReported()
{
    write("# nothing\n");
    QTRY_COMPARE(problem(), QString("The bench file names no cameras."));
    write(QByteArray());
    QTRY_VERIFY(!box("KV00000001 In use"));
    QCOMPARE(problem(), QString("The bench file names no cameras."));
}

void TestBenchPanel::aFailedWriteIsReportedAndTheBoxGoesBack()
{
    // A name as long as names can be leaves none for the file that is to replace it.
    fileName = QString(250, 'b');
    write(Text);
    open();
    box("KV00000001 Attached")->click();
    QVERIFY(problem().startsWith("Not changed: "));
    QVERIFY(box("KV00000001 Attached")->isChecked());
    QVERIFY(box("KV00000001 Attached")->isEnabled());
    QCOMPARE(content(), Text);
}

void TestBenchPanel::aCameraThatIsGoneIsReported()
{
    BenchEditor editor(path());
    editor.burstOfFailedFrames("KV00000009");
    QVERIFY(editor.problem().contains("KV00000009"));
    editor.set("KV00000009", BenchSwitch::InUse, true);
    QVERIFY(editor.problem().contains("KV00000009"));
    QCOMPARE(content(), Text);
    editor.set("KV00000001", BenchSwitch::InUse, true);
    QVERIFY(editor.problem().isEmpty());
}

QTEST_MAIN(TestBenchPanel)
#include "tst_benchpanel.moc"
