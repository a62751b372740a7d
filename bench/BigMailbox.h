#pragma once

/// The mailbox that the benchmarks measure on: faxes in bulk, with texts as long as those of an office.
namespace BigMailbox {

constexpr int lFaxes = 100 * 1000;

/// Folder of the received and of the sent faxes.
constexpr const char *strReceivedFolder = "1001";
constexpr const char *strSentFolder = "1006";

/// Adds so many received and as many sent faxes to the open profile, in one transaction; one in ten is
/// unread. Files are made for none of them. The same call always makes the same rows.
void Fill(int faxes = lFaxes);

/// Adds folders "F0", "F1" ... below "Incoming".
void AddFolders(int folders);

} // namespace BigMailbox
