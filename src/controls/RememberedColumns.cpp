#include "controls/RememberedColumns.h"

#include "core/Globals.h"
#include "core/SettingsFile.h"

#include <QEvent>
#include <QHeaderView>
#include <QTreeView>

namespace {

constexpr int lNarrowest = 16;
constexpr int lWidest = 4000;
constexpr double dUsualDpi = 96;

class ColumnKeeper final : public QObject
{
public:
    explicit ColumnKeeper(QTreeView &keptList)
        : QObject(&keptList)
        , list(keptList)
        , header(*keptList.header())
        , strKey(keptList.window()->objectName() + '_' + keptList.objectName() + "_Columns")
    {
        list.window()->installEventFilter(this);
    }

    void Restore()
    {
        const QStringList parts = ReadIniValue(Global().strUserName, strKey, Global().strIniFile).split(',');
        const bool isOfThisList = parts.size() == header.count();
        for (int i = 0; i < header.count(); ++i) {
            aWidths.append(header.sectionSize(i));
            const int width = isOfThisList ? parts[i].toInt() : 0;
            if (width < lNarrowest || width > lWidest)
                continue;
            aWidths.last() = qRound(width * list.logicalDpiX() / dUsualDpi);
            header.resizeSection(i, aWidths.last());
        }
        connect(&header, &QHeaderView::sectionResized, this,
                [this](int column, int, int width) { TakeWidth(column, width); });
    }

    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Hide && !event->spontaneous())
            Store();
        return false;
    }

private:
    int LastShown() const
    {
        int last = header.count() - 1;
        while (last > 0 && header.isSectionHidden(header.logicalIndex(last)))
            --last;
        return header.logicalIndex(last);
    }

    /// A hidden column has no width, and the last one not its own: both keep what they had.
    void TakeWidth(int column, int width)
    {
        if (width > 0 && column != LastShown() && column < aWidths.size())
            aWidths[column] = width;
    }

    /// Widths that cannot be stored are only forgotten.
    void Store() const
    {
        QStringList parts;
        for (const int width : aWidths)
            parts.append(QString::number(qRound(width * dUsualDpi / list.logicalDpiX())));
        WriteIniValues(Global().strUserName, {{strKey, parts.join(',')}}, Global().strIniFile);
    }

    QTreeView &list;
    QHeaderView &header;
    QString strKey;
    QList<int> aWidths; ///< by column, in pixels
};

} // namespace

void RememberColumns(QTreeView &list)
{
    (new ColumnKeeper(list))->Restore();
}
