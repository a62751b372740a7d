#pragma once

#include "core/formats/HeaderProfile.h"

#include <QDialog>
#include <QTimer>

#include <array>
#include <memory>

class QLineEdit;
class QPushButton;
struct Ports;

namespace Ui {
class frmHeader;
}

/// The editor of one header and footer profile, with a picture of what it makes of a page.
class frmHeader final : public QDialog
{
    Q_OBJECT

public:
    explicit frmHeader(const Ports &ports, QWidget *parent = nullptr);
    ~frmHeader() override;

    /// The full path of the profile, empty for a new one; before the window is shown.
    void Init(const QString &path);

    /// The name under which a new profile was saved; empty when none was.
    const QString &NewName() const { return strNewName; }
    /// True once the profile was saved.
    bool IsSaved() const { return bSaved; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    static constexpr int textCount = 12, macroCount = 6;

    void FindControls();
    void ConnectTexts();
    void ConnectMargins();
    void ConnectButtons();
    void LoadFromFile(const QString &path);
    bool SettingToFile(const QString &path);
    void ShowProfile();
    void ReadFontSetting(int text);
    void ShowPicture();
    /// Not at each key, so that typing stays quick.
    void ShowPictureSoon();
    void Focus(int text);
    void InsertField(int field);
    void ClickFont();
    void ClickImport();
    void ClickSaveAs();
    void ClickSave();

    const Ports &ports;
    std::unique_ptr<Ui::frmHeader> ui;
    std::array<QLineEdit *, textCount> txtHeader{};
    std::array<QPushButton *, macroCount> btnField{};
    QTimer pictureTimer;
    HeaderProfile profile; ///< what the controls show
    QString strPath;
    QString strNewName;
    bool bSaved = false;
    int lLastText = -1;            ///< the text that has the keyboard or had it last; -1 for none
    int lCaret = 0, lSelected = 0; ///< where its selection begins, and its length, when it lost the keyboard
};
