#pragma once

#include <QHash>
#include <QObject>

#include <functional>

class QAction;
class QKeySequence;
class QMainWindow;
class QMenu;
class QToolBar;

/// The commands of the viewer: menus, tool bar and keys. Each has a name such as "mnuRotateRight".
class ViewerCommands final : public QObject
{
    Q_OBJECT

public:
    /// Makes the menu bar and the tool bar of the window, with two boxes in it.
    ViewerCommands(QMainWindow &window, QWidget &pageBox, QWidget &zoomBox);

    void SetCommand(const QString &name, std::function<void()> run);
    QAction &Action(const QString &name) const { return *actions[name]; }
    /// What needs a fax, and what needs a page before or behind the present one. `page` is zero-based.
    void ShowPlace(int page, int pages);

    QToolBar &ToolBar() const { return *toolBar; }
    /// For a click on a page.
    QMenu &PageMenu() const { return *pageMenu; }

private:
    void MakeFileMenu();
    void MakeEditMenu();
    void MakeViewMenu();
    void MakeZoomCommands(QMenu &menu);
    void MakeToolBarMenu(QMenu &menu);
    void MakePageMenu();
    void MakeGoMenu();
    void MakeHelpMenu();
    void FillToolBar(QWidget &pageBox, QWidget &zoomBox);
    void FillPageMenu();
    QMenu &AddMenu(const QString &title);
    QAction &Add(QMenu &menu, const QString &name, const QString &text, const QString &tip,
                 const QList<QKeySequence> &keys = {}, const QString &icon = {});
    QAction &AddSwitch(QMenu &menu, const QString &name, const QString &text, const QString &tip,
                       const QList<QKeySequence> &keys = {}, const QString &icon = {});
    void AddButton(const QString &name, const QString &text = {});

    QMainWindow &window;
    QToolBar *toolBar;
    QMenu *pageMenu;
    QHash<QString, QAction *> actions;
};
