#pragma once

#include "core/formats/HeaderProfile.h"
#include "core/ports/FileDialogs.h"

#include <QString>
#include <QStringList>

class Message;

/// The header profiles of a user: the composer's list of them, and how they are made, saved and deleted.
/// `headerFolder` is the user's "Header" folder.
namespace HeaderProfiles {

/// "<None>", the standard profiles that are there with a "*" in front, all others by name, and
/// "<New Profile...>".
QStringList Entries(const QString &headerFolder);

/// What may be done with an entry of that list.
struct Commands
{
    bool bMakesNew = false; ///< choosing it makes a new profile
    bool bEdit = false;
    bool bDelete = false;
};
/// An index outside of the list allows nothing.
Commands CommandsOf(const QStringList &entries, qsizetype index);

/// Adds a new profile in front of the last entry; returns its index.
qsizetype Insert(QStringList &entries, const QString &name);
/// Takes an entry out; returns the index that is to be selected then.
qsizetype Remove(QStringList &entries, qsizetype index);

/// The file of an entry that can be edited, whether it exists or not.
QString PathOf(const QString &headerFolder, const QString &entry);
/// Asks, and deletes the profile's file; a failure to delete is not told. True when the entry is to go.
bool Delete(const QString &headerFolder, const QString &entry, Message &message);

/// What the editor shows before anything was entered. Its top margins are not those of a file that lacks
/// them.
HeaderProfile NewProfile();
/// Asks for the name of a new profile. Empty when there is none, or when a profile of that name exists, which
/// the user is told.
QString AskName(const QString &headerFolder, Message &message);
/// Writes the profile; a failure is told.
bool Save(const QString &path, const HeaderProfile &profile, Message &message);
/// For the choice of a file to import or to save a copy in.
FileDialogSetup DialogSetup(const QString &userFolder);
/// Writes a copy to the file that the user has chosen, empty for none, after a question if it exists. False
/// when nothing was written.
bool SaveAs(const QString &path, const HeaderProfile &profile, Message &message);

} // namespace HeaderProfiles
