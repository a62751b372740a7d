#include "desktop/Leftovers.h"

#include <QDir>

void DeleteLeftovers(const QString &folder)
{
    if (folder.isEmpty())
        return;
    QDir dir(folder);
    for (const QString &name : dir.entryList({"tmp~*.tif"}, QDir::Files))
        dir.remove(name);
}
