#include "mailbox/OpenFolders.h"

#include "core/SettingsFile.h"

#include <QList>

#include <utility>

namespace {

/// A value of the settings file holds 254 characters: the keys take as many values as they need.
constexpr qsizetype lLongestValue = 254;
constexpr int lMostValues = 200;

QString NameOf(int value)
{
    return "tvFolder_Open" + QString::number(value);
}

QStringList Pack(const QStringList &keys)
{
    QStringList values;
    for (const QString &key : keys) {
        if (key.contains(',') || key.size() > lLongestValue)
            continue;
        if (values.isEmpty() || values.last().size() + 1 + key.size() > lLongestValue)
            values.append(key);
        else
            values.last() += ',' + key;
    }
    return values.mid(0, lMostValues);
}

} // namespace

QStringList ReadOpenFolders(const QString &section, const QString &file)
{
    QStringList keys;
    for (int value = 0; value < lMostValues; ++value) {
        const QString text = ReadIniValue(section, NameOf(value), file);
        if (text.isEmpty())
            break;
        keys += text.split(',');
    }
    return keys;
}

bool WriteOpenFolders(const QStringList &keys, const QString &section, const QString &file)
{
    QList<std::pair<QString, QString>> values;
    for (const QString &text : Pack(keys))
        values.append({NameOf(static_cast<int>(values.size())), text});
    const QString behindLast = NameOf(static_cast<int>(values.size()));
    if (!ReadIniValue(section, behindLast, file).isEmpty()) // where reading ends
        values.append({behindLast, {}});
    return WriteIniValues(section, values, file);
}
