#pragma once

#include "PagesView.h"

#include <QByteArray>

/// How the user has left the window, kept in a settings file of the viewer's own.
struct ViewerSettings
{
    QByteArray abGeometry; ///< as `QWidget::saveGeometry` gives it
    bool bThumbnails = false;
    int lThumbnailWidth = 0; ///< pixels; 0 for the usual one
    PagesView::ZoomMode mode = PagesView::ZoomMode::Width;
    double dZoom = 1.0; ///< for free zoom
    Qt::ToolButtonStyle buttons = Qt::ToolButtonTextUnderIcon;

    /// The usual values stand for what is missing or makes no sense.
    static ViewerSettings Read();
    void Write() const;
};
