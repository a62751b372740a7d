#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/// The file list of a composer, with its selection: what the user does to it. Indexes count from 0.
class SourceFiles final
{
public:
    static constexpr qsizetype Limit = 50;

    QStringList aFiles;   ///< a leading "*" marks a file that is a ready fax
    QList<int> aSelected; ///< ascending

    /// Adds a file, with its "*" if it has one, and selects it alone.
    void Add(const QString &file);
    /// Adds what the user has chosen. One file is added whatever the number; of several, the list takes as
    /// many as the limit allows: false when it has stopped there.
    bool AddChosen(const QStringList &files);
    void RemoveSelected();
    /// Swaps the selected entry with its neighbour; false when there is none, or not one selected entry.
    bool Move(int step);
    /// Moves entries before another one, as a drag does.
    void MoveBefore(const QList<int> &entries, int target);

    /// Paths of the selected entries.
    QStringList SelectedPaths() const;
    bool IsFull() const { return aFiles.size() >= Limit; }
    bool CanMove(int step) const;
    /// The folder of the last entry, with its slash, when it exists.
    QString FolderOfLast() const;
    /// The path of an entry, without its "*".
    static QString PathOf(const QString &entry);
};
