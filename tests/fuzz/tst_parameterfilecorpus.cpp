// SPDX-License-Identifier: MIT
// The files that the fuzzer starts from: each has the result that its name begins with, and has it soon.

#include "readparameterfile.h"

#include <QDir>
#include <QElapsedTimer>
#include <QtTest>

class TestParameterFileCorpus : public QObject
{
    Q_OBJECT

private slots:
    void everyFileHasItsResultSoon_data();
    void everyFileHasItsResultSoon();
    void everyFileBrokenOffAnywhereIsSound_data() { everyFileHasItsResultSoon_data(); }
    void everyFileBrokenOffAnywhereIsSound();
    void everyFileWithAByteChangedIsSound_data() { everyFileHasItsResultSoon_data(); }
    void everyFileWithAByteChangedIsSound();
};

static QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

void TestParameterFileCorpus::everyFileHasItsResultSoon_data()
{
    QTest::addColumn<QString>("path");
    const QDir corpus(qEnvironmentVariable("SPECKMEND_SOURCE_DIR") + "/tests/fuzz/corpus/parameterfile");
    const QFileInfoList files = corpus.entryInfoList({"*.xml"}, QDir::Files, QDir::Name);
    QVERIFY(files.size() >= 30);
    for (const QFileInfo &file : files)
        QTest::newRow(qPrintable(file.baseName())) << file.filePath();
}

void TestParameterFileCorpus::everyFileHasItsResultSoon()
{
    QFETCH(QString, path);
    QElapsedTimer timer;
    timer.start();
    const ReadParameterFile read(contentOf(path));
    QVERIFY2(timer.elapsed() < 1000, qPrintable(QString("%1 ms").arg(timer.elapsed())));
    QVERIFY(read.isSound());
    const QString result = QFileInfo(path).baseName().section('-', 0, 0);
    QCOMPARE(read.isWellFormed ? (read.settings ? "applied" : "none") : "refused", qPrintable(result));
}

void TestParameterFileCorpus::everyFileBrokenOffAnywhereIsSound()
{
    QFETCH(QString, path);
    const QByteArray content = contentOf(path).left(1000);
    for (int length = 0; length < content.size(); length += 3)
        QVERIFY2(ReadParameterFile(content.left(length)).isSound(), qPrintable(QString::number(length)));
}

void TestParameterFileCorpus::everyFileWithAByteChangedIsSound()
{
    QFETCH(QString, path);
    const QByteArray content = contentOf(path).left(1000);
    const QByteArray bytes("<\"&\x80", 4);
    for (int at = 0; at < content.size(); at += 3) {
        QByteArray changed = content;
        changed[at] = bytes[at % bytes.size()];
        QVERIFY2(ReadParameterFile(changed).isSound(), qPrintable(QString::number(at)));
    }
}

QTEST_GUILESS_MAIN(TestParameterFileCorpus)
#include "tst_parameterfilecorpus.moc"
