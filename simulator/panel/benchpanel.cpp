// SPDX-License-Identifier: MIT
// The widgets of the bench panel.

#include "benchpanel.h"

#include <QCheckBox>
#include <QDir>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

namespace {

constexpr int Margin = 16;
constexpr int ColumnGap = 24;
constexpr int RowGap = 14;
constexpr int SmallestWidth = 480;
constexpr int HeadHeight = 110; // the file's name and a problem of one line

constexpr BenchSwitch Switches[] = {BenchSwitch::Attached, BenchSwitch::LensCap, BenchSwitch::InUse};
const char *const SwitchNames[] = {QT_TRANSLATE_NOOP("BenchPanel", "Attached"),
                                   QT_TRANSLATE_NOOP("BenchPanel", "Lens cap"),
                                   QT_TRANSLATE_NOOP("BenchPanel", "In use")};
constexpr int SwitchCount = 3;
constexpr int ButtonColumn = SwitchCount + 1;

// Readable on light and dark windows alike.
const char ProblemStyle[] = "QLabel { background: #fbe6e3; color: #6e1c14; border: 1px solid #d6403a;"
                            " border-radius: 4px; padding: 8px; }";

QString kindName(kelvosim::SensorKind kind)
{
    switch (kind) {
    case kelvosim::SensorKind::Mono:
        return BenchPanel::tr("mono");
    case kelvosim::SensorKind::RawBayer:
        return BenchPanel::tr("raw Bayer");
    case kelvosim::SensorKind::Colour32:
        break;
    }
    return BenchPanel::tr("colour");
}

/// "KV00001280" in bold over "KV-1280M, mono, 1280 x 1024".
QString description(const kelvosim::CameraSpec &spec)
{
    const QString model = BenchPanel::tr("%1, %2, %3 x %4")
                              .arg(QString::fromStdString(spec.model), kindName(spec.kind))
                              .arg(spec.width)
                              .arg(spec.height);
    const QString serial = QString::fromStdString(spec.serial);
    return QString("<b>%1</b><br>%2").arg(serial.toHtmlEscaped(), model.toHtmlEscaped());
}

bool stateOf(const kelvosim::CameraSpec &spec, BenchSwitch which)
{
    switch (which) {
    case BenchSwitch::Attached:
        return spec.attached;
    case BenchSwitch::LensCap:
        return spec.lensCap;
    case BenchSwitch::InUse:
        break;
    }
    return spec.usedElsewhere;
}

} // namespace

BenchPanel::BenchPanel(const QString &path, QWidget *parent)
    : QWidget(parent)
    , editor(path)
{
    setWindowTitle(tr("Simulated cameras"));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(Margin, Margin, Margin, Margin);
    layout->setSpacing(Margin);
    layout->addWidget(createHead());
    layout->addWidget(problem = new QLabel);
    layout->addWidget(createTable(), 1);
    problem->setObjectName("problem");
    problem->setWordWrap(true);
    problem->setStyleSheet(ProblemStyle);
    connect(&editor, &BenchEditor::changed, this, &BenchPanel::showState);
    showState();
    const QSize all = table->sizeHint() + QSize(2 * Margin, HeadHeight + 2 * Margin);
    resize(all.expandedTo(QSize(SmallestWidth, 0)));
}

QWidget *BenchPanel::createHead()
{
    const QString path = editor.path().isEmpty() ? tr("none") : QDir::toNativeSeparators(editor.path());
    auto *head = new QLabel(tr("Bench file: %1").arg(path));
    head->setTextFormat(Qt::PlainText);
    head->setTextInteractionFlags(Qt::TextSelectableByMouse);
    head->setWordWrap(true);
    return head;
}

QWidget *BenchPanel::createTable()
{
    auto *area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setSizeAdjustPolicy(QAbstractScrollArea::AdjustToContents);
    table = new QWidget;
    auto *layout = new QVBoxLayout(table);
    layout->setContentsMargins(0, 0, 0, 0);
    area->setWidget(table);
    return area;
}

void BenchPanel::showState()
{
    problem->setText(editor.problem());
    problem->setVisible(!editor.problem().isEmpty());
    QStringList cameras;
    for (const benchfile::Camera &camera : editor.cameras())
        cameras << description(camera.spec);
    if (!rows || cameras != shownCameras) {
        shownCameras = cameras;
        rebuildRows();
    }
    for (const benchfile::Camera &camera : editor.cameras())
        updateRow(camera);
    table->setEnabled(editor.isUsable());
}

void BenchPanel::rebuildRows()
{
    if (rows) {
        rows->hide();
        rows->deleteLater(); // the change may come from one of its own check boxes
    }
    rowOf.clear();
    rows = new QWidget;
    auto *grid = new QGridLayout(rows);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(ColumnGap);
    grid->setVerticalSpacing(RowGap);
    addHeadings(grid);
    for (const benchfile::Camera &camera : editor.cameras())
        addRow(grid, camera);
    grid->setColumnStretch(0, 1);
    grid->setRowStretch(grid->rowCount(), 1);
    table->layout()->addWidget(rows);
}

void BenchPanel::addHeadings(QGridLayout *grid)
{
    if (editor.cameras().empty())
        return;
    grid->addWidget(new QLabel(tr("Camera")), 0, 0);
    for (int i = 0; i < SwitchCount; ++i)
        grid->addWidget(new QLabel(tr(SwitchNames[i])), 0, i + 1, Qt::AlignHCenter);
}

void BenchPanel::addRow(QGridLayout *grid, const benchfile::Camera &camera)
{
    const std::string &serial = camera.spec.serial;
    const int line = grid->rowCount();
    grid->addWidget(new QLabel(description(camera.spec)), line, 0);
    Row &row = rowOf[QString::fromStdString(serial)];
    for (int i = 0; i < SwitchCount; ++i) {
        row.boxes[i] = createBox(serial, Switches[i], tr(SwitchNames[i]));
        grid->addWidget(row.boxes[i], line, i + 1, Qt::AlignCenter);
    }
    grid->addWidget(createButtons(serial), line, ButtonColumn);
}

QCheckBox *BenchPanel::createBox(const std::string &serial, BenchSwitch which, const QString &name)
{
    auto *box = new QCheckBox;
    const QString fullName = QString("%1 %2").arg(QString::fromStdString(serial), name);
    box->setObjectName(fullName);
    box->setAccessibleName(fullName);
    connect(box, &QCheckBox::clicked, this, [=](bool on) { editor.set(serial, which, on); });
    return box;
}

QWidget *BenchPanel::createButtons(const std::string &serial)
{
    const QString camera = QString::fromStdString(serial);
    auto *buttons = new QWidget;
    auto *layout = new QHBoxLayout(buttons);
    layout->setContentsMargins(0, 0, 0, 0);
    auto *burst = new QPushButton(tr("Burst of failed frames"));
    burst->setObjectName(camera + " burst");
    burst->setToolTip(tr("The next 10 captures of this camera fail."));
    connect(burst, &QPushButton::clicked, this, [=] { editor.burstOfFailedFrames(serial); });
    auto *reset = new QPushButton(tr("Reset stored lists"));
    reset->setObjectName(camera + " reset");
    reset->setToolTip(tr("Empties the user list that this camera keeps."));
    connect(reset, &QPushButton::clicked, this, [=] { editor.resetStoredLists(serial); });
    layout->addWidget(burst);
    layout->addWidget(reset);
    return buttons;
}

/// Shows the states in the file, whatever was clicked: a change that could not be written is seen to fail.
void BenchPanel::updateRow(const benchfile::Camera &camera)
{
    const Row row = rowOf.value(QString::fromStdString(camera.spec.serial));
    for (int i = 0; i < SwitchCount; ++i)
        row.boxes[i]->setChecked(stateOf(camera.spec, Switches[i]));
}
