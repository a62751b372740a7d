#include "core/formats/ReceiptStates.h"

#include "core/Utilities.h"

#include <QDateTime>
#include <QStringList>

namespace {

ReceiptState ReadEntry(const QString &receiver, const QString &entry)
{
    const QStringList parts = entry.split(',');
    if (parts.size() != 2)
        return {receiver, {}, false};
    return {receiver, parts[0], NumericPrefix(parts[1]) == 1};
}

} // namespace

QList<ReceiptState> ReceiptStates::Parse(const QString &receiveUser, const QString &returnReceipts)
{
    const QStringList receivers = UnescapeText(receiveUser).split(';');
    const QStringList entries = UnescapeText(returnReceipts).split(';');
    QList<ReceiptState> states;
    if (receivers.size() != entries.size())
        return states;
    // The last is what stands behind the last ";".
    for (qsizetype i = 0; i < entries.size() - 1; ++i)
        states.append(ReadEntry(receivers[i], entries[i]));
    return states;
}

QString ReceiptStates::FindFirstReader(const QList<ReceiptState> &states)
{
    QDateTime earliest;
    QString reader;
    for (const ReceiptState &state : states) {
        if (state.strReadTime.isEmpty()) // the time alone decides, whatever the state says
            continue;
        const QDateTime time = ToDateTime(state.strReadTime);
        if (!time.isValid())
            return {};
        if (!earliest.isValid() || time < earliest) {
            earliest = time;
            reader = state.strReceiver;
        }
    }
    return reader;
}
