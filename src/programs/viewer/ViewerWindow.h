#pragma once

#include "FaxDocument.h"

#include <QMainWindow>

class QLabel;

/// The window of the viewer: one fax, or a text that says why there is none.
class ViewerWindow final : public QMainWindow
{
    Q_OBJECT

public:
    explicit ViewerWindow(QWidget *parent = nullptr);

    /// Opens a file, in the place of the present one.
    void Open(const QString &path);
    FaxDocument &Document() { return document; }

private:
    FaxDocument document;
    QLabel *labNotice;
};
