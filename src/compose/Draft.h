#pragma once

#include <QCoreApplication>
#include <QString>
#include <QStringList>

class Mailbox;
struct Ports;

/// What the controls of a composer hold.
struct DraftFields
{
    QString strReceive; ///< recipients as typed
    QString strSubject;
    QString strMemo;
    QString strHeader;  ///< the chosen entry, with its "*" if it has one
    QStringList aFiles; ///< in order; a leading "*" marks a file that is a ready fax
    bool bSend = false; ///< `chkSend`
};

/// The fax that one composer writes: a row of `SendFax` and a TIFF in the outbox, as far as they exist.
class Draft final
{
    Q_DECLARE_TR_FUNCTIONS(Draft)

public:
    Draft(const Ports &systemPorts, Mailbox &shownMailbox);

    QString strFaxID;   ///< of the row; empty until the first save of a new fax
    QString strTifFile; ///< full path of the rendered fax; empty when none is valid
    QString strSendOption;

    /// Reads the row of `strFaxID`; false when there is none. Files of its list that are missing are left out
    /// and named in `missing`. Raises the errors of the database.
    bool Load(DraftFields &fields, QStringList &missing);

    /// Normalises the recipients in `fields` and splits them; false when none is left that the fax could be
    /// sent to. Raises the errors of the database.
    bool SplitReceivers(DraftFields &fields);
    /// Writes the row, after `SplitReceivers`, gives the rendered fax its name and tells the mailbox. With
    /// `toQueue` the fax joins those that wait for the server; `wasPrinted` says that a conversion was run,
    /// so that an older rendering goes. A file of the list that gets another name is followed there. Raises
    /// the errors of the database, and one when the fax to send has no file; the row and its file then stay
    /// as they were.
    void Save(DraftFields &fields, bool toQueue, bool wasPrinted);

    /// Takes away what an aborted conversion of this fax left.
    void RemoveLeftover() const;

private:
    struct Values;

    void ReadFileList(const QString &fileList, const QString &fileName, DraftFields &fields,
                      QStringList &missing) const;
    Values CollectValues(const DraftFields &fields, const QString &rendered) const;
    QString InsertStatement(const Values &values, const QString &id, const QString &folder) const;
    QString UpdateStatement(const Values &values, const QString &id, const QString &folder) const;
    void RemoveOldFile(const DraftFields &fields) const;

    const Ports &ports;
    Mailbox &mailbox;
    QString strOldTifFile; ///< what the row named when it was loaded or last saved
    QString strFolderID;
    QString strOuterReceiver;
    QString strInnerReceiver;
    QString strTempReceiver;
    bool bHasResult = false; ///< the row has been sent before: its next save is another fax
};
