#pragma once

#include "mailbox/FolderFamily.h"

#include <QList>
#include <QString>

/// One column of the fax list. Columns are numbered from 1; column 1 is the hidden fax id.
struct FaxColumn
{
    QString strKey;
    QString strCaption;   ///< also the spoken name of a column that shows an icon
    QString strIcon;      ///< image key in place of the caption; empty for none
    int lWidth = 0;       ///< pixels at 96 dpi; 0 for a hidden column
    bool bSorted = false; ///< the list starts sorted by this column, newest first

    bool IsHidden() const { return lWidth == 0; }
};

/// Columns that all layouts with faxes have in common.
enum FaxListColumn : int { colFaxID = 1, colIsReaded = 2, colLevel = 3, colFirstText = 4, colFaxTable = 10 };

/// The number of the layout, 0 to 5, that a family's folders show.
int GetColumnLayout(FolderFamily family);

QList<FaxColumn> GetFaxListColumns(int layout);
