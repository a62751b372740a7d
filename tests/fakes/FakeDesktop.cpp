#include "fakes/FakeDesktop.h"

void FakeMailbox::LoadGridItem(const QString &key, int mode, const QString &extraFilter, bool allFolders,
                               bool clearFirst)
{
    QString call = QStringLiteral("load %1 %2").arg(key, QString::number(mode));
    if (!extraFilter.isEmpty())
        call += QStringLiteral(" where ") + extraFilter;
    if (allFolders)
        call += QStringLiteral(" everywhere");
    if (!clearFirst)
        call += QStringLiteral(" adding");
    aCalls.append(call);
}

void FakeMailbox::SelectRow(int row)
{
    aCalls.append(QStringLiteral("row %1").arg(row));
}

bool FakeMailbox::DropFirstWaiting()
{
    if (strFolder != "1003")
        return false;
    aCalls.append("drop row");
    return true;
}

void FakeMailbox::NotifySaveFax(int kind, bool isNew, const QString &id)
{
    aCalls.append(QStringLiteral("saved %1 %2 %3").arg(QString::number(kind), isNew ? "new" : "old", id));
}

void FakeMailbox::FollowFaxes(const QStringList &ids, const QStringList &hidden)
{
    aCalls.append(QStringLiteral("follow %1 hide %2").arg(ids.join(','), hidden.join(',')));
}

void FakePrinting::PrintFile(const QString &path, int first, int last, int copies, const QString &printerName)
{
    aPrinted.append(
        QStringLiteral("%1 %2-%3 x%4 %5")
            .arg(path, QString::number(first), QString::number(last), QString::number(copies), printerName));
}
