// SPDX-License-Identifier: MIT
// A label that can look like a link and reports clicks.
#pragma once

#include <QLabel>

#include <memory>

/// Reports every mouse release with its number. A clickable one looks like a link, shows the pointing hand
/// while the mouse is over it, and can be reached by Tab and pressed by key; one that is not reports a
/// release all the same. GUI thread only.
class QClickableLabel final : public QLabel
{
    Q_OBJECT

public:
    QClickableLabel(QWidget *parent, bool clickable);

    /// The number to report, which becomes the text too. A text set afterwards stands, and the number stays.
    void setValue(int value);

signals:
    /// The mouse was released over the label, whichever button it was, or the link was pressed by Space or
    /// Enter; carries the number.
    void clicked(int value);

protected:
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void enterEvent(QEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void paintGround();

    /// One place on the application's stack of override cursors, for as long as it lives.
    struct HandCursor
    {
        HandCursor();
        ~HandCursor();
        Q_DISABLE_COPY(HandCursor)
    };

    int value = 0;
    bool clickable = false;
    // Enters and leaves do not come in pairs: a label can vanish under the mouse, and be entered again behind
    // a message box. So the label remembers whether it has pushed, and takes back no more and no less.
    std::unique_ptr<HandCursor> hand;
};
