#pragma once

#include "controls/BusyPointer.h"

#include <QList>
#include <QWidget>

#include <memory>
#include <optional>

class PageCanvas;
class QAction;
class QMenu;
class ShownMailbox;

namespace Ui {
class PreviewPane;
}

/// The preview `picPreview`: the header block of the selected fax, its page and the page's commands.
class PreviewPane final : public QWidget
{
    Q_OBJECT

public:
    explicit PreviewPane(ShownMailbox &mailbox, QWidget *parent = nullptr);
    ~PreviewPane() override;

    /// The page's commands by their names, such as "mnuFaxview_NextPage", in the order of the menu. They are
    /// enabled as the buttons are. Shortcuts of a single key hold on the canvas, and on what the actions are
    /// added to.
    QList<QAction *> PageActions() const { return aActions; }
    PageCanvas &Canvas() const;

signals:
    /// A double click on the page.
    void ViewRequested();

private:
    void AddAction(const QString &name, const QString &text, const QString &shortcut,
                   void (PreviewPane::*run)());
    void AddSeparator();
    void MakeActions();
    void MakeRightMenu();
    void SetUpButtons();
    void SetUpCanvas();
    void ShowHeader();
    void ShowPage();
    void ShowZoom();
    void ShowNotice();
    void ShowStates();
    void ShowBusy(bool isLarge);

    void FirstPage();
    void PreviousPage();
    void EndOfPreviousPage();
    void NextPage();
    void LastPage();
    void FitWidth();
    void ActualSize();
    void RotateLeft();
    void RotatePlane();
    void RotateRight();
    /// Counter-clockwise.
    void Turn(int quarters);
    void ZoomIn();
    void ZoomOut();

    ShownMailbox &mailbox;
    std::unique_ptr<Ui::PreviewPane> ui;
    QList<QAction *> aActions;
    QMenu *mnuFaxview_RightMenu = nullptr;
    std::optional<BusyPointer> busyPointer;
};
