#include "ViewerCommands.h"

#include "controls/Icons.h"

#include <QAction>
#include <QActionGroup>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QToolBar>

/// The pictures of a static library are dropped unless somebody asks for them.
static void InitPictures()
{
    Q_INIT_RESOURCE(viewer);
}

namespace {
/// Holds the image key of an action.
constexpr char iconProperty[] = "imageKey";
} // namespace

ViewerCommands::ViewerCommands(QMainWindow &mainWindow, QWidget &pageBox, QWidget &zoomBox)
    : window(mainWindow)
    , toolBar(window.addToolBar(tr("Tool Bar")))
    , pageMenu(new QMenu(&window))
{
    InitPictures();
    MakeFileMenu();
    MakeEditMenu();
    MakeViewMenu();
    MakePageMenu();
    MakeGoMenu();
    MakeHelpMenu();
    FillToolBar(pageBox, zoomBox);
    FillPageMenu();
    ShowPlace(0, 0);
}

// Menus

QMenu &ViewerCommands::AddMenu(const QString &title)
{
    return *window.menuBar()->addMenu(title);
}

/// The window has the action too: a full screen has no menu bar that could take its key.
QAction &ViewerCommands::Add(QMenu &menu, const QString &name, const QString &text, const QString &tip,
                             const QList<QKeySequence> &keys, const QString &icon)
{
    QAction *action = menu.addAction(text);
    action->setObjectName(name);
    action->setShortcuts(keys);
    action->setStatusTip(tip);
    action->setIcon(Icons::GetForMenu(icon));
    action->setProperty(iconProperty, icon);
    window.addAction(action);
    actions.insert(name, action);
    return *action;
}

QAction &ViewerCommands::AddSwitch(QMenu &menu, const QString &name, const QString &text, const QString &tip,
                                   const QList<QKeySequence> &keys, const QString &icon)
{
    QAction &action = Add(menu, name, text, tip, keys, icon);
    action.setCheckable(true);
    return action;
}

void ViewerCommands::MakeFileMenu()
{
    QMenu &menu = AddMenu(tr("&File"));
    Add(menu, "mnuOpen", tr("&Open..."), tr("Show another fax"), {QKeySequence("Ctrl+O")}, "mnuOpenFile");
    Add(menu, "mnuReload", tr("&Reload"), tr("Read the file of this fax again"), {QKeySequence("F5")},
        "mnuRefresh");
    menu.addSeparator();
    Add(menu, "mnuSaveCopy", tr("&Save a Copy..."), tr("Save this fax as a TIFF or PDF file"),
        {QKeySequence("Ctrl+S"), QKeySequence("Ctrl+Shift+S")}, "mnuSaveAs");
    menu.addSeparator();
    Add(menu, "mnuPrintPreview", tr("Print Pre&view..."), tr("Show how this fax comes out on paper"),
        {QKeySequence("Ctrl+Shift+P")}, "mnuPrintPreview");
    Add(menu, "mnuPrint", tr("&Print..."), tr("Print this fax"), {QKeySequence("Ctrl+P")}, "tbPrintFax");
    menu.addSeparator();
    Add(menu, "mnuClose", tr("&Close"), tr("Close the viewer"),
        {QKeySequence("Ctrl+W"), QKeySequence("Ctrl+Q")});
}

void ViewerCommands::MakeEditMenu()
{
    QMenu &menu = AddMenu(tr("&Edit"));
    Add(menu, "mnuCopyPage", tr("&Copy Page"), tr("Copy the page as a picture"), {QKeySequence("Ctrl+C")},
        "mnuCopyPage");
}

void ViewerCommands::MakeViewMenu()
{
    QMenu &menu = AddMenu(tr("&View"));
    MakeZoomCommands(menu);
    menu.addSeparator();
    AddSwitch(menu, "mnuThumbnails", tr("&Thumbnails"), tr("Show small pages beside the fax"),
              {QKeySequence("F9")}, "mnuThumbnails");
    MakeToolBarMenu(*menu.addMenu(tr("Tool &Bar")));
    menu.addSeparator();
    Add(menu, "mnuNextPane", tr("&Next Pane"), tr("Give the keyboard to the next part of the window"),
        {QKeySequence("F6")});
    AddSwitch(menu, "mnuFullScreen", tr("F&ull Screen"), tr("Show nothing but the fax; Esc ends that"),
              {QKeySequence("F11")}, "mnuFullScreen");
}

void ViewerCommands::MakeZoomCommands(QMenu &menu)
{
    Add(menu, "mnuZoomIn", tr("Zoom &In"), tr("Show the pages larger"),
        {QKeySequence("Ctrl++"), QKeySequence("Ctrl+="), QKeySequence("+"), QKeySequence("=")}, "btnZoomIn");
    Add(menu, "mnuZoomOut", tr("Zoom &Out"), tr("Show the pages smaller"),
        {QKeySequence("Ctrl+-"), QKeySequence("-")}, "btnZoomOut");
    Add(menu, "mnuActualSize", tr("&Actual Size"), tr("Show the pages as large as on paper"),
        {QKeySequence("Ctrl+0"), QKeySequence("0")}, "btnZoom100");
    AddSwitch(menu, "mnuFitWidth", tr("Fit &Width"), tr("Let the pages fill the width of the window"),
              {QKeySequence("W")}, "btnFixWidth");
    AddSwitch(menu, "mnuFitPage", tr("Fit &Page"), tr("Show a whole page at a time"), {QKeySequence("F")},
              "btnFitPage");
}

void ViewerCommands::MakeToolBarMenu(QMenu &menu)
{
    auto *styles = new QActionGroup(this);
    const auto add = [&](const QString &name, const QString &text, const QString &tip,
                         Qt::ToolButtonStyle style) {
        QAction &action = AddSwitch(menu, name, text, tip);
        styles->addAction(&action);
        connect(&action, &QAction::triggered, toolBar, [this, style] { toolBar->setToolButtonStyle(style); });
        connect(toolBar, &QToolBar::toolButtonStyleChanged, &action,
                [&action, style](Qt::ToolButtonStyle shown) { action.setChecked(shown == style); });
    };
    add("mnuToolBarIcons", tr("&Icons Only"), tr("Show the buttons of the tool bar without text"),
        Qt::ToolButtonIconOnly);
    add("mnuToolBarTextUnder", tr("Text &Under Icons"), tr("Show the text of the tool bar under its icons"),
        Qt::ToolButtonTextUnderIcon);
    add("mnuToolBarTextBeside", tr("Text &Beside Icons"),
        tr("Show the text of the tool bar beside its icons"), Qt::ToolButtonTextBesideIcon);
    toolBar->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(toolBar, &QWidget::customContextMenuRequested, &menu,
            [this, &menu](const QPoint &place) { menu.popup(toolBar->mapToGlobal(place)); });
}

void ViewerCommands::MakePageMenu()
{
    QMenu &menu = AddMenu(tr("&Page"));
    Add(menu, "mnuRotateRight", tr("Rotate Ri&ght"), tr("Turn the page clockwise"), {QKeySequence("R")},
        "btnRotateRight");
    Add(menu, "mnuRotateLeft", tr("Rotate &Left"), tr("Turn the page against the clock"),
        {QKeySequence("Shift+R")}, "btnRotateLeft");
    Add(menu, "mnuRotate180", tr("Turn Upside &Down"), tr("Turn the page by half"), {QKeySequence("Alt+R")},
        "btnRotatePlane");
    menu.addSeparator();
    Add(menu, "mnuRotateAllRight", tr("Rotate &All Right"), tr("Turn all pages clockwise"),
        {QKeySequence("Ctrl+R")});
    Add(menu, "mnuRotateAllLeft", tr("Rotate All L&eft"), tr("Turn all pages against the clock"),
        {QKeySequence("Ctrl+Shift+R")});
}

void ViewerCommands::MakeGoMenu()
{
    QMenu &menu = AddMenu(tr("&Go"));
    Add(menu, "mnuPreviousPage", tr("&Previous Page"), tr("Go to the page before"),
        {QKeySequence("Ctrl+PgUp"), QKeySequence("Alt+Up")}, "btnPreviousPage");
    Add(menu, "mnuNextPage", tr("&Next Page"), tr("Go to the page behind"),
        {QKeySequence("Ctrl+PgDown"), QKeySequence("Alt+Down")}, "btnNextPage");
    Add(menu, "mnuFirstPage", tr("&First Page"), tr("Go to the first page"),
        {QKeySequence("Ctrl+Home"), QKeySequence("Alt+Home")});
    Add(menu, "mnuLastPage", tr("&Last Page"), tr("Go to the last page"),
        {QKeySequence("Ctrl+End"), QKeySequence("Alt+End")});
    menu.addSeparator();
    Add(menu, "mnuGoToPage", tr("&Go to Page..."), tr("Go to a page by its number"),
        {QKeySequence("Ctrl+G")});
}

void ViewerCommands::MakeHelpMenu()
{
    QMenu &menu = AddMenu(tr("&Help"));
    Add(menu, "mnuAbout", tr("&About the Viewer"), tr("Show the version"));
}

// Tool bar

void ViewerCommands::FillToolBar(QWidget &pageBox, QWidget &zoomBox)
{
    toolBar->setObjectName("tbViewer");
    toolBar->setMovable(false);
    AddButton("mnuOpen", tr("Open"));
    AddButton("mnuSaveCopy", tr("Save"));
    AddButton("mnuPrint", tr("Print"));
    toolBar->addSeparator();
    AddButton("mnuThumbnails");
    toolBar->addSeparator();
    AddButton("mnuPreviousPage", tr("Previous"));
    toolBar->addWidget(&pageBox);
    AddButton("mnuNextPage", tr("Next"));
    toolBar->addSeparator();
    AddButton("mnuZoomOut", tr("Smaller"));
    toolBar->addWidget(&zoomBox);
    AddButton("mnuZoomIn", tr("Larger"));
    AddButton("mnuFitWidth");
    AddButton("mnuFitPage");
    toolBar->addSeparator();
    AddButton("mnuRotateLeft");
    AddButton("mnuRotateRight");
}

/// An action of its own that follows the menu item: its icon stands on the window, not on a menu's highlight.
void ViewerCommands::AddButton(const QString &name, const QString &shortText)
{
    QAction &command = Action(name);
    const QString text = shortText.isEmpty() ? command.text().remove('&') : shortText;
    QAction *button = toolBar->addAction(Icons::Get(command.property(iconProperty).toString()), text);
    button->setObjectName(QString(name).replace("mnu", "tb"));
    button->setCheckable(command.isCheckable());
    button->setStatusTip(command.statusTip());
    button->setToolTip(
        QString("%1 (%2)").arg(command.statusTip(), command.shortcut().toString(QKeySequence::NativeText)));
    toolBar->widgetForAction(button)->setAccessibleName(command.text().remove('&'));
    const auto follow = [&command, button] {
        button->setEnabled(command.isEnabled());
        button->setChecked(command.isChecked());
    };
    connect(&command, &QAction::changed, button, follow);
    connect(button, &QAction::triggered, &command, [&command, follow] {
        command.trigger();
        follow();
    });
}

void ViewerCommands::FillPageMenu()
{
    const auto add = [this](const QStringList &names) {
        for (const QString &name : names)
            pageMenu->addAction(actions[name]);
        pageMenu->addSeparator();
    };
    add({"mnuCopyPage"});
    add({"mnuFitWidth", "mnuFitPage", "mnuActualSize"});
    add({"mnuRotateRight", "mnuRotateLeft"});
    add({"mnuSaveCopy", "mnuPrint"});
    add({"mnuFullScreen"});
}

// States

void ViewerCommands::SetCommand(const QString &name, std::function<void()> run)
{
    connect(actions[name], &QAction::triggered, this, std::move(run));
}

void ViewerCommands::ShowPlace(int page, int pages)
{
    for (const char *name : {"mnuSaveCopy", "mnuPrintPreview", "mnuPrint", "mnuCopyPage", "mnuZoomIn",
                             "mnuZoomOut", "mnuActualSize", "mnuRotateRight", "mnuRotateLeft", "mnuRotate180",
                             "mnuRotateAllRight", "mnuRotateAllLeft", "mnuGoToPage"})
        actions[name]->setEnabled(pages > 0);
    for (const char *name : {"mnuPreviousPage", "mnuFirstPage"})
        actions[name]->setEnabled(page > 0);
    for (const char *name : {"mnuNextPage", "mnuLastPage"})
        actions[name]->setEnabled(page + 1 < pages);
}
