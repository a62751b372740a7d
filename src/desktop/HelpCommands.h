#pragma once

#include <QString>

struct Ports;

/// The commands of the help menu that open something outside the program. What cannot be opened is said in a
/// box, with the address to go to by hand.
class HelpCommands
{
public:
    /// `version` is the program's, for the mail to the support. The ports outlive this object.
    HelpCommands(const Ports &ports, const QString &version)
        : ports(ports)
        , strVersion(version)
    {
    }

    /// Opens the help file of the program's folder.
    void mnuShowHelp();
    /// Opens the maker's web page.
    void mnuHelp_Website();
    /// Opens a new mail to the maker's support, with the program's version in its body (RFC 6068).
    void mnuSupport();

private:
    bool Open(const QString &target) const;

    const Ports &ports;
    QString strVersion;
};
