#pragma once

#include <QString>
#include <QStringList>

class QDateTime;
class Folders;
class Ids;
class Message;
class Shell;
class Sound;

// Paths and files. Paths use "/"; a backslash separates too where a path is cut.

/// The program's folder with one trailing slash.
QString AppPath(const Folders &folders);
/// Makes the folder with all its parents; true on success, also when it is there already.
bool CreateFolder(const QString &path);
/// The same for a folder that holds passwords' digests and faxes: nobody but its owner may enter one that is
/// made here. Parents get the usual rights, and an existing folder keeps its own.
bool CreatePrivateFolder(const QString &path);
/// True for an existing path that is no folder.
bool FileExists(const QString &path);
bool FolderExists(const QString &path);
/// Has the system write a file, or the names in a folder, through to the disk, as far as the file system can;
/// false when it failed.
bool FlushToDisk(const QString &path);
/// Deletes the folder with its contents. True when that FAILED: callers know it so.
bool DeleteFolder(const QString &path);
bool IsFolderReadOnly(const QString &path, Ids &ids, Message &message);
/// The text up to the last separator, that included; empty when there is none.
QString GetFolderOfPath(const QString &path);
/// What follows the last "/" or "\".
QString GetBareName(const QString &path);
/// Folder code 35: common application data; 26: the user's. Ends in a slash; empty on failure.
QString GetSpecialFolder(const Folders &folders, int code, long owner = 0);
/// The path cut in the middle to `width` characters at most, its last component kept.
QString CompactPath(const QString &path, int width);
/// True when the shell has started it; see `Shell::Open`.
bool ShellOpen(Shell &shell, const QString &file, const QString &verb, const QStringList &parameters,
               const QString &folder, int show);

// Text

/// The text up to the first NUL, trailing blanks removed.
QString TrimNull(const QString &text);
QString CleanFileName(const QString &text);
QString CleanReceiverText(const QString &text);
QString RemoveLastChar(const QString &text, const QString &character);
/// Occurrences of `part` in `text`, overlaps included.
int CountOf(const QString &text, const QString &part);
/// "#RRGGBB" as a number with blue in the highest of the three bytes; 16777215 for any other length.
long ColorFromHex(const QString &text);
/// "1,023", "1.00 KB", "12.3 MB" ...
QString FormatFileSize(qint64 size);
/// The longest numeric prefix of the text, 0 for none; a decimal point counts.
double NumericPrefix(const QString &text);
/// The numeric prefix rounded to a whole number, held within 32 bits.
int ToNumber(const QString &text);
/// A stored truth value: a number other than 0, or "True".
bool ReadsAsTrue(const QString &stored);
/// A date, ISO or month/day/year, with or without a time: "2024-01-31 09:30:00", "1/31/2024 9:30 AM". Invalid
/// for any other text.
QDateTime ToDateTime(const QString &text);
/// Free text for a statement: each apostrophe becomes "~$@~".
QString EscapeText(const QString &text);
/// The way back.
QString UnescapeText(const QString &text);
/// 32 upper-case hexadecimal digits. A failure shows "Error while creating GUID!" and gives "".
QString NewFaxID(Ids &ids, Message &message);
/// The same without a message.
QString NewFaxID(Ids &ids);
/// True for 1 to 64 letters, digits, "-" or "_": what may become a file name or part of a statement.
bool IsSafeFaxID(const QString &id);

// System

/// A code of the system that runs the program, 0 unknown to 9.
long GetWindowsVersion();
int DaysInMonth(int year, int month);
/// With no sound device shows "No soundcard detected!"; otherwise plays the file.
void PlaySoundFile(const QString &path, Sound &sound, Message &message);

// Debug and errors

/// On false shows "BugAssert failed: " and the text on the error output and stops the program.
void BugAssert(bool condition, const QString &text);
/// Raises the system error of that code, with the number 0x80040000 plus the code.
[[noreturn]] void ApiRaise(long code);
/// The system's message for the code.
QString ApiError(long code);
/// The running program's file without folder and ending, as error sources name it.
QString ProgramFileName();
