#include "ViewerSettings.h"

#include <QSettings>
#include <QStandardPaths>

#include <algorithm>

namespace {

constexpr int lWidestThumbnails = 1000;

QString SettingsFile()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           "/Velmar/VelmarBrowser.ini";
}

/// The names that values have in the file.
const QList<std::pair<PagesView::ZoomMode, QString>> &Modes()
{
    static const QList<std::pair<PagesView::ZoomMode, QString>> modes{{PagesView::ZoomMode::Width, "width"},
                                                                      {PagesView::ZoomMode::Page, "page"},
                                                                      {PagesView::ZoomMode::Free, "free"}};
    return modes;
}

const QList<std::pair<Qt::ToolButtonStyle, QString>> &Styles()
{
    static const QList<std::pair<Qt::ToolButtonStyle, QString>> styles{
        {Qt::ToolButtonTextUnderIcon, "under"},
        {Qt::ToolButtonTextBesideIcon, "beside"},
        {Qt::ToolButtonIconOnly, "icons"}};
    return styles;
}

/// The first one for a name that is unknown.
template <typename Value>
Value FromName(const QList<std::pair<Value, QString>> &names, const QString &name)
{
    const auto found =
        std::find_if(names.begin(), names.end(), [&name](const auto &one) { return one.second == name; });
    return found == names.end() ? names.first().first : found->first;
}

template <typename Value>
QString ToName(const QList<std::pair<Value, QString>> &names, Value value)
{
    const auto found =
        std::find_if(names.begin(), names.end(), [value](const auto &one) { return one.first == value; });
    return found == names.end() ? names.first().second : found->second;
}

} // namespace

ViewerSettings ViewerSettings::Read()
{
    const QSettings file(SettingsFile(), QSettings::IniFormat);
    ViewerSettings settings;
    settings.abGeometry = file.value("Window/Geometry").toByteArray();
    settings.buttons = FromName(Styles(), file.value("Window/Buttons").toString());
    settings.bThumbnails = file.value("Thumbnails/Shown", false).toBool();
    settings.lThumbnailWidth = std::clamp(file.value("Thumbnails/Width", 0).toInt(), 0, lWidestThumbnails);
    settings.mode = FromName(Modes(), file.value("Zoom/Mode").toString());
    const double zoom = file.value("Zoom/Factor", 1.0).toDouble();
    settings.dZoom = zoom > 0 && zoom < 100 ? zoom : 1.0;
    return settings;
}

void ViewerSettings::Write() const
{
    QSettings file(SettingsFile(), QSettings::IniFormat);
    file.setValue("Window/Geometry", abGeometry);
    file.setValue("Window/Buttons", ToName(Styles(), buttons));
    file.setValue("Thumbnails/Shown", bThumbnails);
    file.setValue("Thumbnails/Width", lThumbnailWidth);
    file.setValue("Zoom/Mode", ToName(Modes(), mode));
    file.setValue("Zoom/Factor", dZoom);
}
