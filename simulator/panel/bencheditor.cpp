// SPDX-License-Identifier: MIT
// Reading, changing and writing the bench file.

#include "bencheditor.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace {

constexpr int LookInterval = 250; // milliseconds
constexpr std::uint32_t BurstLength = 10;

// Keys of the two counters: the library acts when they grow.
const char FailedFramesKey[] = "failed frames";
const char ListResetsKey[] = "list resets";

std::string keyOf(BenchSwitch which)
{
    switch (which) {
    case BenchSwitch::Attached:
        return "attached";
    case BenchSwitch::LensCap:
        return "lens cap";
    case BenchSwitch::InUse:
        break;
    }
    return "in use";
}

std::string valueOf(BenchSwitch which, bool on)
{
    if (which == BenchSwitch::LensCap)
        return on ? "on" : "off";
    return on ? "yes" : "no";
}

std::uint32_t sum(std::uint32_t count, std::uint32_t more)
{
    return count + std::min(more, std::numeric_limits<std::uint32_t>::max() - count);
}

const benchfile::Camera &find(const std::vector<benchfile::Camera> &cameras, const std::string &serial)
{
    for (const benchfile::Camera &camera : cameras) {
        if (camera.spec.serial == serial)
            return camera;
    }
    throw std::runtime_error("there is no camera " + serial + " any more");
}

} // namespace

BenchEditor::BenchEditor(const QString &path, QObject *parent)
    : QObject(parent)
    , file(path)
{
    connect(&interval, &QTimer::timeout, this, &BenchEditor::look);
    understand(read());
    interval.start(LookInterval);
}

void BenchEditor::look()
{
    const QByteArray text = read();
    if (text == seen && text.isNull() == seen.isNull())
        return;
    understand(text);
    emit changed();
}

void BenchEditor::set(const std::string &serial, BenchSwitch which, bool on)
{
    change([=](const std::string &text) {
        return benchfile::setValue(text, serial, keyOf(which), valueOf(which, on));
    });
}

void BenchEditor::burstOfFailedFrames(const std::string &serial)
{
    increase(serial, FailedFramesKey, &benchfile::Camera::failedFrames, BurstLength);
}

void BenchEditor::resetStoredLists(const std::string &serial)
{
    increase(serial, ListResetsKey, &benchfile::Camera::listResets, 1);
}

void BenchEditor::increase(const std::string &serial, const std::string &key,
                           std::uint32_t benchfile::Camera::*counter, std::uint32_t by)
{
    change([=](const std::string &text) {
        const std::uint32_t count = sum(find(benchfile::parse(text), serial).*counter, by);
        return benchfile::setValue(text, serial, key, std::to_string(count));
    });
}

/// Changes the text that stands in the file now, which may be younger than the last look.
void BenchEditor::change(const Edit &edit)
{
    const QByteArray text = read();
    understand(text);
    if (usable) {
        try {
            write(QByteArray::fromStdString(edit(text.toStdString())));
            understand(read());
        } catch (const std::exception &failure) {
            report(tr("Not changed: %1").arg(QString::fromUtf8(failure.what())));
        }
    }
    emit changed();
}

/// The file's content, never null; null when it cannot be read.
QByteArray BenchEditor::read() const
{
    QFile in(file);
    if (!QFileInfo(file).isFile() || !in.open(QIODevice::ReadOnly))
        return QByteArray();
    const QByteArray text = in.readAll();
    return text.isNull() ? QByteArray("") : text;
}

/// Replaces the content as a whole, so that nobody ever reads half of it.
void BenchEditor::write(const QByteArray &text) const
{
    QSaveFile out(file);
    if (!out.open(QIODevice::WriteOnly) || out.write(text) != text.size() || !out.commit())
        throw std::runtime_error(out.errorString().toStdString());
}

void BenchEditor::understand(const QByteArray &text)
{
    seen = text;
    usable = false;
    if (text.isNull()) {
        report(file.isEmpty() ? tr("There is no bench file: name one, or set KELVOSIM_BENCH to it.")
                              : tr("The bench file cannot be read."));
        return;
    }
    try {
        known = benchfile::parse(text.toStdString());
        usable = true;
        report(known.empty() ? tr("The bench file names no cameras.") : QString());
    } catch (const benchfile::Error &error) {
        report(tr("The bench file has a mistake in %1.").arg(QString::fromUtf8(error.what())));
    }
}

void BenchEditor::report(const QString &text)
{
    trouble = text;
}
