#include "desktop/MainLayout.h"

#include "core/SettingsFile.h"
#include "core/Utilities.h"

#include <functional>

namespace {

constexpr int lFarthest = 32767;

using NumberField = std::function<void(const QString &, std::optional<int> &)>;
using FlagField = std::function<void(const QString &, std::optional<bool> &)>;

/// Visits the keys in the order in which they are stored.
void ForEachKey(MainLayout &layout, const NumberField &number, const FlagField &flag)
{
    const auto pane = [&](const QString &name, PaneRect &rect) {
        number(name + "_Left", rect.lLeft);
        number(name + "_Top", rect.lTop);
        number(name + "_Width", rect.lWidth);
        number(name + "_Height", rect.lHeight);
    };
    pane("Main", layout.Main);
    number("Main_State", layout.lState);
    pane("tvFolder", layout.tvFolder);
    pane("tvAddressbook", layout.tvAddressbook);
    flag("tvAddressbook_IsVisible", layout.bAddressbookVisible);
    pane("grdFaxList", layout.grdFaxList);
    pane("picPreview", layout.picPreview);
    flag("picPreview_IsVisible", layout.bPreviewVisible);
    flag("historyPlane_IsVisible", layout.bHistoryVisible);
    number("tbClient_Style", layout.lToolBarStyle);
}

std::optional<int> ToCoordinate(const QString &text)
{
    bool isNumber = false;
    const int value = text.toInt(&isNumber);
    return isNumber && value >= -lFarthest && value <= lFarthest ? std::optional(value) : std::nullopt;
}

std::optional<bool> ToFlag(const QString &text)
{
    if (text.isEmpty())
        return std::nullopt;
    return ReadsAsTrue(text);
}

} // namespace

MainLayout ReadMainLayout(const QString &section, const QString &file)
{
    MainLayout layout;
    ForEachKey(
        layout,
        [&](const QString &key, std::optional<int> &value) {
            value = ToCoordinate(ReadIniValue(section, key, file));
        },
        [&](const QString &key, std::optional<bool> &value) {
            value = ToFlag(ReadIniValue(section, key, file));
        });
    return layout;
}

bool WriteMainLayout(const MainLayout &layout, const QString &section, const QString &file)
{
    QList<std::pair<QString, QString>> values;
    MainLayout copy = layout;
    ForEachKey(
        copy,
        [&](const QString &key, std::optional<int> &value) {
            if (value)
                values.append({key, QString::number(*value)});
        },
        [&](const QString &key, std::optional<bool> &value) {
            if (value)
                values.append({key, *value ? "True" : "False"});
        });
    return WriteIniValues(section, values, file);
}
