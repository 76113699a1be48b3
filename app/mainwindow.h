// SPDX-License-Identifier: MIT
// The program's one window: it owns every long-lived object and wires them together.
#pragma once

#include "badpixellistmodel.h"
#include "camera.h"
#include "cameralistmodel.h"
#include "guard.h"
#include "pixelclassdelegate.h"

#include <QImage>
#include <QItemSelection>
#include <QMainWindow>
#include <QPointer>
#include <QTableView>
#include <QVector>

#include <functional>
#include <memory>

class DetectionDialogue;
class MagnifierControl;
class ParameterBlockWidget;
class QAction;
class QDockWidget;
class QItemSelectionModel;
class QLabel;
class QMenu;
class QScrollBar;
class QTimer;

namespace Ui {
class MainWindow;
}

/// GUI thread only. One file a topic: mainwindow_<topic>.cpp.
class MainWindow final : public QMainWindow
{
    Q_OBJECT

public:
    /// @throws std::exception when a part of the window cannot be built or the cameras cannot be listed
    explicit MainWindow(QWidget *parent = nullptr);
    ~MainWindow() override;

signals:
    /// A camera was opened (true) or closed (false).
    void cameraOpened(bool opened);
    /// The focus has moved, or was set to where it is; in image pixels.
    void magnifierPositionChanged(QPoint position);
    void detectionFinished();
    /// The share of a run's frames that has arrived, 10 to 100.
    void detectionProgress(int percent);

protected slots:
    void createCameraListDock();
    void createBadpixelListDock();
    void createMagnifierDock();
    void createCameraSliderDock();
    void clearMagnifier();
    void showCameraListContextMenu(QPoint pos);
    void showBadpixelListContextMenu(QPoint pos);
    void openCamera();
    void closeCamera();
    void newImage(QImage &image);
    void updateStatus();
    void updateCameraActions();
    void onCameraOpened(Camera *openedCamera);
    void onCameraClosed();
    void setSelection(QModelIndex topLeft, QModelIndex bottomRight);
    void updateSelection(QItemSelection selected, QItemSelection deselected);
    void setMagnifierPosition(QPoint position);
    void updateStatusPosition(QPoint position);
    void updateScaleFactor(int scale);
    void writeBadpixelList();
    void saveBadpixelList();
    void loadBadpixelList();
    void exportBadpixelList();
    void importBadpixelList();
    void addNewBadpixel();
    void deleteBadpixel();
    void clearBadpixel();
    void openDetectDialog();
    void startDetectingBadpixel(bool clear, uint threshold);
    void detectBadpixel();
    void onShowHideCameraListDock();
    void onShowHideBadpixelListDock();
    void onShowHideMagnifierDock();
    void onShowHideCameraSliderDock();
    void onMenuShow();
    void onZoomChanged(QAction *act);
    void onSelectCameraRow(int row);
    void onCameraReconnect();
    void onCameraDisconnect();
    void onHotpixelCorrection();
    void openHelpUsageWindow();
    void openHelpAboutWindow();

protected:
    void changeEvent(QEvent *event) override;
    /// Scrolls the image that has the keyboard.
    void keyPressEvent(QKeyEvent *event) override;

private:
    struct Zoom;
    using FileWork = std::function<void(const QString &file)>;

    void build();
    void takeDown();

    // construction, in this order
    void createSelectionModels();
    void prepareView();
    void createActions();
    void createCameraActions();
    void createHotpixelActions();
    void createZoomActions();
    void createHelpActions();
    void createMenus();
    void createToolBar();
    void createStatusBar();
    void createFileMenu();
    void createViewMenu();
    void createHelpMenu();
    void connectActions();
    void connectCamera();
    void connectLists();
    void connectView();
    void readSettings();
    void fitToScreen();
    void fetchFloatingToolBar();
    void writeSettings();

    QAction *addNamedAction(const char *name, const QString &text, const QString &icon = QString());
    QLabel *createStatusLabel(const char *name, int minimumWidth);
    QAction *createZoomAction(const char *name, const QString &text);
    QDockWidget *createDock(const QString &title, const char *name, QWidget *inner, QWidget *parent);
    void connectCameraSliders();
    void prepareMagnifier();
    static void showFocused(QWidget *before, QWidget *now);
    static void flipVisibility(QDockWidget *dock);
    static void compactRows(QTableView *table);

    // camera
    CameraEntry selectedCamera() const;
    void openSelectedCamera(const CameraEntry &entry);
    void checkCorrectionSupport();
    void selectCameraRow(int row);
    void setImageVisible(bool visible);

    // hot pixels and view
    QModelIndex selectedHotpixel() const;
    void clearUserEntries();
    void changeRowByRow(const std::function<void()> &work);
    void selectEntryAt(const QPoint &position);
    void goToEntry(const QModelIndex &index);
    void enableDeletionOf(const Badpixel &entry);
    void onBadpixelListSorted();
    bool scrollByKey(int key);
    void scrollToEntry(const Badpixel &entry);
    void scrollInProportion(QScrollBar *bar, int imageExtent, int position) const;

    // files
    void saveToFile(const QString &title, const QString &filter, const FileWork &work);
    void readFromFile(const QString &title, const QString &filter, const FileWork &work);
    void guardFile(const QString &title, const std::function<void()> &work);

    // detection
    void captureDarkFrame(const QImage &frame);
    void reportLightLeak();
    void dropRun();
    void abortRun();

    /// Runs `work`; the text of an exception is shown in the status bar for `msec` milliseconds.
    template<typename Work>
    bool guard(Work &&work, int msec = 2000)
    {
        return guarded(work, [this, msec](const QString &text) { showText(text, msec); });
    }
    void showText(const QString &text, int msec);
    void resetStatistics();

    std::unique_ptr<Ui::MainWindow> form;
    Camera camera;
    CameraListModel cameraList;
    BadpixelListModel badpixelList;
    PixelclassDelegate classDelegate{nullptr};

    QAction *openCameraAction = nullptr;
    QAction *closeCameraAction = nullptr;
    QAction *saveListAction = nullptr;
    QAction *loadListAction = nullptr;
    QAction *highlightAction = nullptr;
    QAction *writeListAction = nullptr;
    QAction *correctionAction = nullptr;
    QAction *addBadpixelAction = nullptr;
    QAction *deleteBadpixelAction = nullptr;
    QAction *clearBadpixelAction = nullptr;
    QAction *detectAction = nullptr;
    QAction *zoom1to1Action = nullptr;
    QAction *zoom2to1Action = nullptr;
    QAction *zoom4to1Action = nullptr;
    QAction *zoom1to2Action = nullptr;
    QAction *zoom1to4Action = nullptr;
    QAction *zoomToFitAction = nullptr;
    QAction *zoomAction = nullptr;
    QAction *usageAction = nullptr;
    QAction *aboutAction = nullptr;
    QAction *showCameraListAction = nullptr;
    QAction *showBadpixelListAction = nullptr;
    QAction *showMagnifierAction = nullptr;
    QAction *showCameraSliderAction = nullptr;
    QMenu *zoomMenu = nullptr;

    QLabel *userCountLabel = nullptr;
    QLabel *factoryCountLabel = nullptr;
    QLabel *xLabel = nullptr;
    QLabel *yLabel = nullptr;
    QLabel *framesLabel = nullptr;
    QLabel *failedLabel = nullptr;
    QLabel *frameRateLabel = nullptr;
    QTimer *statisticsTimer = nullptr;

    // A dock, and what is in it, may be destroyed before the window is.
    QPointer<QDockWidget> cameraListDock;
    QPointer<QDockWidget> badpixelListDock;
    QPointer<QDockWidget> magnifierDock;
    QPointer<QDockWidget> cameraSliderDock;
    QPointer<QTableView> cameraTable;
    QPointer<QTableView> badpixelTable;
    QPointer<MagnifierControl> magnifierControl;
    QPointer<ParameterBlockWidget> parameterBlock;
    QItemSelectionModel *cameraSelection = nullptr;
    QItemSelectionModel *badpixelSelection = nullptr;

    int scaleFactor = 1; // view pixels an image pixel; 1 for reductions too, 0 to fit
    bool detecting = false;
    uint detectionThreshold = 25;
    double shownMark = 1111.0;  // Kept: nobody reads it; every change of what is shown resets it
    QVector<QImage> darkFrames; // deep copies: the camera's buffers are borrowed
    int detectionPercent = 0;
    QPoint magnifierPosition; // image pixels
    QSize imageSize;          // of the latest frame; empty while there is none
    QPointer<DetectionDialogue> detectionDialogue;
};
