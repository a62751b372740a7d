#pragma once

#include <QString>
#include <QStringList>

/// What the client asks of the print tool: the nine fields of the request, in their order.
struct PrintRequest
{
    QStringList aFiles;         ///< paths in the order of the list; a leading "*" marks a ready fax file
    QString strUserFolder;      ///< full path of the user's folder
    QString strHeader;          ///< the chosen entry, with its "*" if it has one; "<None>" for no header
    QString strCompanyName;     ///< for "[CompanyName]"
    QString strRecipients;      ///< for "[Recipients]"
    int lThreshold = 200;       ///< what is darker becomes black, 0 to 255
    int lFitting = 0;           ///< how pictures are fitted, 0 to 4, as the send options count
    int lResolution = 1;        ///< 1 is 204 x 196 dpi; 0, and whatever else the user's option is, 204 x 98
    QString strApplicationData; ///< full path of the program's data

    bool IsFine() const { return lResolution == 1; }

    /// The text for the shared string: the fields with character 2 between them. A control character within a
    /// field becomes a blank. Raises an error for a path that the list's separators would cut.
    QString Pack() const;
    /// The way back. A threshold or fitting out of range is brought into it, a negative threshold and an
    /// unknown fitting to the default. Raises an error for a text that is cut or no request.
    static PrintRequest Parse(const QString &text);
};

/// What the client and the print tool say to each other in their shared string; the last writer wins. The
/// request comes first, then lines for the user, then one final text: `Error`, a text with `FailureMark`, or
/// one with `FinishMark`, behind which the name of the fax file and three more characters stand.
namespace PrintConversation {

inline constexpr QLatin1StringView SharedName{"TestSharestrPrinterStateing"};
inline constexpr QLatin1StringView StopRequest{"closewindow"}; ///< the client's
inline constexpr QLatin1StringView Error{"Error"};             ///< the tool could not work
inline constexpr QLatin1StringView FailureMark{"failed."};
inline constexpr QChar FinishMark{1};

} // namespace PrintConversation
