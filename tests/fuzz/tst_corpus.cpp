// SPDX-License-Identifier: MIT
// The files that a fuzzer starts from, those of mended faults among them: each has the outcome that its name
// begins with, and what must be true of every input is true of them, broken off and with bytes changed too.

#include "fuzztarget.h"

#include <QDir>
#include <QtTest>

#include <ctime>

class TestCorpus : public QObject
{
    Q_OBJECT

private slots:
    void everyFileHasItsOutcomeSoon_data();
    void everyFileHasItsOutcomeSoon();
    void everyFileBrokenOffAnywhereIsSound_data() { everyFileHasItsOutcomeSoon_data(); }
    void everyFileBrokenOffAnywhereIsSound();
    void everyFileWithAByteChangedIsSound_data() { everyFileHasItsOutcomeSoon_data(); }
    void everyFileWithAByteChangedIsSound();
};

static QByteArray contentOf(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("%s is unreadable", qPrintable(path));
    return file.readAll();
}

static void read(const QByteArray &content)
{
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(content.data()),
                           static_cast<std::size_t>(content.size()));
}

void TestCorpus::everyFileHasItsOutcomeSoon_data()
{
    QTest::addColumn<QString>("path");
    const QDir corpus(qEnvironmentVariable("SPECKMEND_CORPUS"));
    const QFileInfoList files = corpus.entryInfoList(QDir::Files, QDir::Name);
    QVERIFY2(!files.isEmpty(), qPrintable(corpus.path()));
    for (const QFileInfo &file : files)
        QTest::newRow(qPrintable(file.fileName())) << file.filePath();
}

void TestCorpus::everyFileHasItsOutcomeSoon()
{
    QFETCH(QString, path);
    const QByteArray content = contentOf(path);
    const std::clock_t begin = std::clock(); // the processor's time, which a busy machine does not stretch
    const QByteArray outcome = outcomeOf(content);
    QVERIFY(std::clock() - begin < 2 * CLOCKS_PER_SEC);
    QCOMPARE(outcome, QFileInfo(path).fileName().section('-', 0, 0).toUtf8());
}

void TestCorpus::everyFileBrokenOffAnywhereIsSound()
{
    QFETCH(QString, path);
    const QByteArray content = contentOf(path).left(1000);
    for (int length = 0; length < content.size(); length += 3)
        read(content.left(length));
}

void TestCorpus::everyFileWithAByteChangedIsSound()
{
    QFETCH(QString, path);
    const QByteArray content = contentOf(path).left(1000);
    const QByteArray bytes("<\"&\x80[=#\n\0 9-", 12);
    for (int at = 0; at < content.size(); at += 3) {
        QByteArray changed = content;
        changed[at] = bytes[at / 3 % bytes.size()];
        read(changed);
    }
}

QTEST_GUILESS_MAIN(TestCorpus)
#include "tst_corpus.moc"
