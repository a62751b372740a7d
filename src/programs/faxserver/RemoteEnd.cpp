#include "RemoteEnd.h"

#include "Calls.h"
#include "Mailboxes.h"

#include <algorithm>

namespace {

constexpr CallEnd endSent{kindSent, kindSent, 8, 0};
constexpr CallEnd endBusy{kindSending, kindNoneLeft, 12, 0};
constexpr CallEnd endNobody{kindSending, kindNoneLeft, 60, 0};
constexpr CallEnd endBroken{kindSending, kindFailed, 8, 1};
constexpr CallEnd endVoice{kindFailed, kindFailed, 15, 0};
constexpr CallEnd endNoNumber{kindFailed, kindFailed, 0, 0};
constexpr CallEnd endCancelled{kindUnchanged, kindUnchanged, 8, 0};
constexpr CallEnd endBarred{kindBarred, kindBarred, 0, 0};
constexpr CallEnd endUnheardOf{kindUnheardOf, kindUnheardOf, 8, 0};
constexpr CallEnd endRemoved{kindRemoved, kindRemoved, 8, 0};

struct Machine
{
    const char *pszDigits;
    CallEnd end;
    int lAttempts = 0; ///< of each round, that end so; 0 for all
    int lRounds = 0;   ///< that it does so; 0 for all
};

constexpr Machine aMachines[] = {
    {"901", endBusy, 2},   {"902", endBusy},      {"903", endNobody, 0, 1}, {"904", endVoice},
    {"905", endBroken, 1}, {"906", endBroken},    {"907", endBarred},       {"908", endRemoved},
    {"909", endCancelled}, {"910", endUnheardOf},
};

QString DigitsOf(const QString &number)
{
    QString digits;
    std::copy_if(number.begin(), number.end(), std::back_inserter(digits),
                 [](QChar c) { return c.isDigit(); });
    return digits;
}

} // namespace

CallEnd RemoteEnd::Answer(const Call &call)
{
    const QString digits = DigitsOf(call.strNumber);
    if (digits.isEmpty())
        return endNoNumber;
    const int missing = call.lPages - call.lPagesSent;
    for (const Machine &machine : aMachines) {
        const bool isOver = (machine.lAttempts > 0 && call.lAttempts >= machine.lAttempts) ||
                            (machine.lRounds > 0 && call.lRound >= machine.lRounds);
        if (!digits.endsWith(QLatin1String(machine.pszDigits)) || isOver)
            continue;
        CallEnd end = machine.end;
        end.lPages = std::min(end.lPages, missing - 1); // the last page never gets through
        return end;
    }
    CallEnd end = endSent;
    end.lPages = missing;
    return end;
}
