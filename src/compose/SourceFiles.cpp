#include "compose/SourceFiles.h"

#include "core/Utilities.h"

#include <algorithm>

void SourceFiles::Add(const QString &file)
{
    aFiles.append(file);
    aSelected = {static_cast<int>(aFiles.size() - 1)};
}

bool SourceFiles::AddChosen(const QStringList &files)
{
    if (files.size() == 1) { // not held against the limit: the list can come to one more
        Add(files.first());
        return true;
    }
    for (const QString &file : files) {
        Add(file);
        if (IsFull())
            return false;
    }
    return true;
}

void SourceFiles::RemoveSelected()
{
    for (qsizetype i = aSelected.size() - 1; i >= 0; --i)
        aFiles.removeAt(aSelected[i]);
    aSelected.clear();
    if (!aFiles.isEmpty())
        aSelected = {0};
}

bool SourceFiles::CanMove(int step) const
{
    if (aSelected.size() != 1)
        return false;
    const int target = aSelected.first() + step;
    return target >= 0 && target < aFiles.size();
}

bool SourceFiles::Move(int step)
{
    if (!CanMove(step))
        return false;
    const int from = aSelected.first();
    aFiles.swapItemsAt(from, from + step);
    aSelected = {from + step};
    return true;
}

void SourceFiles::MoveBefore(const QList<int> &entries, int target)
{
    QStringList moved;
    QStringList left;
    qsizetype place = 0;
    for (int i = 0; i < aFiles.size(); ++i) {
        if (i == target)
            place = left.size();
        (entries.contains(i) ? moved : left).append(aFiles[i]);
    }
    if (target >= aFiles.size())
        place = left.size();
    aFiles = left.mid(0, place) + moved + left.mid(place);
    aSelected.clear();
    for (qsizetype i = 0; i < moved.size(); ++i)
        aSelected.append(static_cast<int>(place + i));
}

QStringList SourceFiles::SelectedPaths() const
{
    QStringList paths;
    for (const int entry : aSelected)
        paths.append(PathOf(aFiles[entry]));
    return paths;
}

QString SourceFiles::FolderOfLast() const
{
    const QString folder = aFiles.isEmpty() ? QString() : GetFolderOfPath(PathOf(aFiles.last()));
    return FolderExists(folder) ? folder : QString();
}

QString SourceFiles::PathOf(const QString &entry)
{
    return entry.startsWith('*') ? entry.mid(1) : entry;
}
