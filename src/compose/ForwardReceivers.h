#pragma once

#include "compose/SelectedReceivers.h"

/// The recipients of a forwarded fax in the form of its columns, ready for a statement.
struct ForwardReceivers
{
    QString strInner;   ///< "UserName[ID];" of each user of the server
    QString strOuter;   ///< "ID;" of each public contact
    QString strTemp;    ///< `"Name"<fax>;` of all others
    QString strDisplay; ///< what the fax shows

    bool IsEmpty() const { return strInner.isEmpty() && strOuter.isEmpty() && strTemp.isEmpty(); }

    /// Looks the chosen ones up; who is not found is left out. `others` holds numbers with "," or ";" between
    /// them. Raises the errors of the database.
    static ForwardReceivers Resolve(const QList<SelectedReceiver> &chosen, const QString &others);
};
