#include "platform/DesktopFileDialogs.h"

#include "platform/DialogPlace.h"

#include <QFileDialog>

namespace {

/// The patterns mean what they mean where they come from: names are written in any case, "*.*" is every file,
/// and an ending of three letters stands for those of four that begin with it, so that "*.doc" finds .docx.
QStringList ToPatterns(const QString &patterns)
{
    QStringList found;
    for (const QString &pattern : patterns.split(';', Qt::SkipEmptyParts)) {
        if (pattern == "*.*") {
            found += "*";
            continue;
        }
        found += {pattern.toLower(), pattern.toUpper()};
        if (pattern.size() == QString("*.doc").size())
            found += {pattern.toLower() + '?', pattern.toUpper() + '?'};
    }
    found.removeDuplicates();
    return found;
}

/// "Name|*.ext;*.other|..." as the toolkit words it, "Name (*.ext *.EXT *.other *.OTHER)" each.
QStringList ToNameFilters(const QString &filter)
{
    const QStringList parts = filter.split('|');
    QStringList filters;
    for (qsizetype part = 0; part + 1 < parts.size(); part += 2)
        filters += parts[part] + " (" + ToPatterns(parts[part + 1]).join(' ') + ')';
    return filters;
}

QStringList RunDialog(QFileDialog &dialog, const FileDialogSetup &setup)
{
    dialog.setOption(QFileDialog::HideNameFilterDetails); // the names tell the endings where it matters
    dialog.setNameFilters(ToNameFilters(setup.strFilter));
    dialog.setDefaultSuffix(setup.strDefaultExtension);
    if (!setup.strTitle.isEmpty())
        dialog.setWindowTitle(setup.strTitle);
    if (!setup.strFolder.isEmpty())
        dialog.setDirectory(setup.strFolder);
    PlaceOverActiveWindow(dialog);
    return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles() : QStringList();
}

} // namespace

QString DesktopFileDialogs::ChooseFile(const FileDialogSetup &setup)
{
    QFileDialog dialog;
    dialog.setFileMode(QFileDialog::ExistingFile);
    return RunDialog(dialog, setup).value(0);
}

QStringList DesktopFileDialogs::ChooseFiles(const FileDialogSetup &setup)
{
    QFileDialog dialog;
    dialog.setFileMode(QFileDialog::ExistingFiles);
    return RunDialog(dialog, setup);
}

QString DesktopFileDialogs::ChooseTarget(const FileDialogSetup &setup)
{
    QFileDialog dialog;
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setOption(QFileDialog::DontConfirmOverwrite);
    return RunDialog(dialog, setup).value(0);
}
