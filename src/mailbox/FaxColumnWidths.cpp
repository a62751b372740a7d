#include "mailbox/FaxColumnWidths.h"

#include "core/SettingsFile.h"
#include "mailbox/FaxListColumns.h"

#include <QStringList>

#include <algorithm>

namespace {

constexpr int lLayouts = 6;
constexpr int lNarrowest = 16;
constexpr int lWidest = 4000;

QString KeyOf(int layout)
{
    return "grdFaxList_Columns" + QString::number(layout);
}

qsizetype CountWidths(int layout)
{
    const QList<FaxColumn> columns = GetFaxListColumns(layout);
    return std::count_if(columns.begin(), columns.end(),
                         [](const FaxColumn &column) { return !column.IsHidden(); }) -
           1;
}

/// Empty when one of them is no width.
QList<int> ParseWidths(const QString &text)
{
    QList<int> widths;
    for (const QString &part : text.split(',')) {
        const int width = part.toInt();
        if (width < lNarrowest || width > lWidest)
            return {};
        widths.append(width);
    }
    return widths;
}

} // namespace

FaxColumnWidths ReadFaxColumnWidths(const QString &section, const QString &file)
{
    FaxColumnWidths all;
    for (int layout = 0; layout < lLayouts; ++layout) {
        const QList<int> widths = ParseWidths(ReadIniValue(section, KeyOf(layout), file));
        if (widths.size() == CountWidths(layout))
            all.insert(layout, widths);
    }
    return all;
}

bool WriteFaxColumnWidths(const FaxColumnWidths &widths, const QString &section, const QString &file)
{
    QList<std::pair<QString, QString>> values;
    for (auto it = widths.begin(); it != widths.end(); ++it) {
        QStringList parts;
        for (const int width : it.value())
            parts.append(QString::number(width));
        values.append({KeyOf(it.key()), parts.join(',')});
    }
    return WriteIniValues(section, values, file);
}
