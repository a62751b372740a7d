#pragma once

#include <QMap>
#include <QWidget>

#include <memory>

class PageCanvas;
class QAction;
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
    /// enabled as the buttons are.
    QList<QAction *> PageActions() const { return aActions; }
    PageCanvas &Canvas() const;

signals:
    /// A double click on the page.
    void ViewRequested();

private:
    void AddAction(const QString &name, const QString &text, const QString &shortcut,
                   void (PreviewPane::*run)());
    void MakeActions();
    void SetUpButtons();
    void ShowHeader();
    void ShowPage();
    void ShowZoom();
    void ShowStates();
    void ShowRightMenu(const QPoint &place);

    void FirstPage();
    void PreviousPage();
    void NextPage();
    void LastPage();
    void FitWidth();
    void ActualSize();
    void RotateLeft();
    void RotatePlane();
    void RotateRight();
    void ZoomIn();
    void ZoomOut();

    ShownMailbox &mailbox;
    std::unique_ptr<Ui::PreviewPane> ui;
    QList<QAction *> aActions;
};
