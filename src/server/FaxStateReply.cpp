#include "server/FaxStateReply.h"

#include "core/AnsiText.h"
#include "core/Utilities.h"

#include <QStringList>

#include <algorithm>
#include <iterator>

namespace {

enum StateField { fldFaxID, fldStatus, fldEndTime, fldLast = 6, fldCount };

constexpr QChar chrPacked(2); ///< behind each field of `ResultDetailed`

constexpr FaxStateRule rules[] = {
    {1, "Sending"},
    {2, "Send failed", "1007"},
    {3},                        // in progress as before
    {4, "Sucessfully", "1006"}, // stored texts: the spelling is the format
    {5, "Insufficient privileges", "1007"},
    {6, "Invalid fax file", "1007"},
    {10, "Attempt limit reached", "1007"},
    {11, "Deleted by administrator", "1007"},
};

FaxState ReadState(const QStringList &fields)
{
    FaxState state{fields[fldFaxID], NumericPrefix(fields[fldStatus]), EscapeText(fields[fldEndTime]), {}};
    for (int i = fldEndTime; i <= fldLast; ++i)
        state.Detail += EscapeText(fields[i]).remove(chrPacked) + chrPacked;
    return state;
}

} // namespace

FaxStateReply::Cut FaxStateReply::Parse(const QByteArray &data)
{
    const QStringList lines = AnsiText::FromAnsi(data).split("\r\n");
    Cut cut;
    cut.bEmpty = lines.size() == 1;
    // The first line is the status, the last the empty tail.
    for (qsizetype i = 1; i < lines.size() - 1; ++i) {
        const QStringList fields = lines[i].split(QChar(0));
        cut.bShort = fields.size() < fldCount;
        if (cut.bShort)
            break;
        if (IsSafeFaxID(fields[fldFaxID]))
            cut.states.append(ReadState(fields));
    }
    return cut;
}

const FaxStateRule *FaxStateReply::FindRule(double status)
{
    const auto *const found = std::find_if(std::begin(rules), std::end(rules),
                                           [status](const auto &rule) { return rule.lStatus == status; });
    return found == std::end(rules) ? nullptr : found;
}
