#pragma once

#include "server/FaxListReply.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

/// What the server tells about a fax before it sends the file, and the statements that store it. All of it
/// is untrusted.
namespace FaxReply {

enum Field {
    fldSender = 0,
    fldTitle = 1,
    fldFileName = 2,
    fldPages = 3,
    fldLevel = 4,
    fldRemark = 5,
    fldTime = 6,
    fldContacts = 7, ///< ids with ";" between them
    fldUsers = 8,    ///< the same, a marker character in front of each
    fldTyped = 9,    ///< recipients typed by hand
    fldResender = 10,
    fldReceipts = 13
};

constexpr int lLeastFields = 12;

/// Fields of line 1; an empty list when there is no such line.
QStringList Fields(const QByteArray &data);

/// The ids of a list, escaped; `marker` characters of each are left out.
QStringList Ids(const QString &list, int marker);
/// The same as "'id1','id2'"; empty for no ids.
QString QuotedIds(const QString &list, int marker);

/// Folder of a sent fax with that status.
QString SentFolder(int kind);

/// The date of the text as "YY-MM-DD". A text that is no date stays as it is.
QString ShortDate(const QString &text);

/// True for the bare name of a file.
bool IsBareName(const QString &name);

QString ReceiveFaxInsert(const NewFaxItem &item, const QStringList &fields, const QString &receivers,
                         const QString &resender);
QString SendFaxInsert(const NewFaxItem &item, const QStringList &fields);

} // namespace FaxReply
