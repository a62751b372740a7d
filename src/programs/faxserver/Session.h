#pragma once

#include "Accounts.h"

#include <QHash>
#include <QSet>
#include <QStringList>

#include <optional>

/// What the server knows of one connection.
struct Session
{
    std::optional<Account> account;  ///< empty until a login was accepted
    QStringList aListed;             ///< faxes of the last list
    QSet<QString> unfinished;        ///< faxes that were asked for and have not left whole
    QHash<QString, QByteArray> told; ///< states of faxes under way, as last told
};
