#include "SaveError.h"

#include "FaxDocument.h"

#include <QCoreApplication>
#include <QFileInfo>

void RaiseUnreadable(const FaxDocument &fax, int page)
{
    if (!QFileInfo::exists(fax.Path()))
        throw SaveError{QCoreApplication::translate(
            "FaxExport", "The fax is no longer there: its file was moved or deleted.")};
    throw SaveError{QCoreApplication::translate(
                        "FaxExport", "Page %1 cannot be read: the file is damaged, or has changed.")
                        .arg(page + 1)};
}
