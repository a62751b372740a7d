#include "compose/forms/frmHeader.h"

#include "compose/HeaderProfiles.h"
#include "controls/RememberedSize.h"
#include "core/Globals.h"
#include "core/Utilities.h"
#include "core/ports/Clock.h"
#include "core/ports/FileDialogs.h"
#include "core/ports/FontDialogs.h"
#include "core/ports/Ports.h"
#include "ui_frmHeader.h"

#include <QEvent>
#include <QSignalBlocker>

#include <algorithm>

namespace {

constexpr int lTypingPause = 100; // milliseconds
constexpr int longestText = 254;  ///< of a value in the profile's file

constexpr int longestFontName = 40; ///< that is shown

/// A box keeps its height, whatever the size of its text on the page.
constexpr double smallestShown = 7, largestShown = 13;

/// Pages of the picture: the first one and one that stands for all others.
constexpr int shownPages = 2;

struct Margin
{
    const char *name;
    int HeaderSpace::*value;
};
constexpr std::array<Margin, 4> margins{{{"LeftMargin", &HeaderSpace::lLeftMargin},
                                         {"RightMargin", &HeaderSpace::lRightMargin},
                                         {"TopMargin", &HeaderSpace::lTopMargin},
                                         {"LineSpace", &HeaderSpace::lLineSpace}}};

/// The same four of the header and of the footer.
struct SpacePart
{
    const char *prefix;
    HeaderSpace HeaderProfile::*space;
};
constexpr std::array<SpacePart, 2> spaceParts{
    {{"ud", &HeaderProfile::headerSpace}, {"udFooter", &HeaderProfile::footerSpace}}};

QFont ToShownFont(const HeaderText &text)
{
    QFont font(text.strFontName);
    font.setPointSizeF(std::clamp(text.dFontSize, smallestShown, largestShown));
    font.setBold(text.bBold);
    font.setItalic(text.bItalic);
    font.setUnderline(text.bUnderline);
    font.setStrikeOut(text.bStrikeOut);
    return font;
}

FontChoice ToChoice(const HeaderText &text)
{
    return {text.strFontName, text.dFontSize, text.bBold, text.bItalic, text.bUnderline, text.bStrikeOut};
}

void SetFont(HeaderText &text, const FontChoice &font)
{
    text.strFontName = font.strName;
    text.dFontSize = font.dSize;
    text.bBold = font.bBold;
    text.bItalic = font.bItalic;
    text.bUnderline = font.bUnderline;
    text.bStrikeOut = font.bStrikeOut;
}

} // namespace

frmHeader::frmHeader(const Ports &servicePorts, QWidget *parent)
    : QDialog(parent)
    , ports(servicePorts)
    , ui(std::make_unique<Ui::frmHeader>())
{
    ui->setupUi(this);
    ui->tabPicture->addTab(tr("First page"));
    ui->tabPicture->addTab(tr("Other pages"));
    FindControls();
    pictureTimer.setSingleShot(true);
    ConnectTexts();
    ConnectMargins();
    ConnectButtons();
    Init({});
    RememberSize(*this);
}

frmHeader::~frmHeader() = default;

void frmHeader::FindControls()
{
    for (int text = 0; text < textCount; ++text)
        txtHeader[text] = findChild<QLineEdit *>("txt" + headerSections[text]);
    for (int field = 0; field < macroCount; ++field)
        btnField[field] = findChild<QPushButton *>(QString("btnField_%1").arg(field));
}

void frmHeader::ConnectTexts()
{
    for (int text = 0; text < textCount; ++text) {
        txtHeader[text]->setMaxLength(longestText);
        txtHeader[text]->installEventFilter(this);
        connect(txtHeader[text], &QLineEdit::textChanged, this, [this, text](const QString &typed) {
            profile.aTexts[text].strText = typed;
            ShowPictureSoon();
        });
    }
    connect(&pictureTimer, &QTimer::timeout, this, &frmHeader::ShowPicture);
}

void frmHeader::ConnectMargins()
{
    for (const SpacePart &part : spaceParts) {
        for (const Margin &margin : margins) {
            auto *box = findChild<NumberBox *>(QLatin1String(part.prefix) + QLatin1String(margin.name));
            connect(box, &NumberBox::valueChanged, this, [this, part, margin](int value) {
                profile.*part.space.*margin.value = value;
                ShowPictureSoon();
            });
        }
    }
    connect(ui->chkFirstHeader, &QCheckBox::toggled, this, [this](bool only) {
        profile.bOnlyFirstHeader = only;
        ShowPicture();
    });
    connect(ui->chkFirstFooter, &QCheckBox::toggled, this, [this](bool only) {
        profile.bOnlyFirstFooter = only;
        ShowPicture();
    });
}

void frmHeader::ConnectButtons()
{
    for (int field = 0; field < macroCount; ++field)
        connect(btnField[field], &QPushButton::clicked, this, [this, field] { InsertField(field); });
    connect(ui->tabPicture, &QTabBar::currentChanged, this, &frmHeader::ShowPicture);
    connect(ui->btnFont, &QPushButton::clicked, this, &frmHeader::ClickFont);
    connect(ui->btnImport, &QPushButton::clicked, this, &frmHeader::ClickImport);
    connect(ui->btnSaveAs, &QPushButton::clicked, this, &frmHeader::ClickSaveAs);
    connect(ui->btnSave, &QPushButton::clicked, this, &frmHeader::ClickSave);
    connect(ui->btnCancel, &QPushButton::clicked, this, &frmHeader::reject);
}

void frmHeader::Init(const QString &path)
{
    strPath = path;
    strNewName.clear();
    bSaved = false;
    const QString file = GetBareName(path);
    setWindowTitle(path.isEmpty() ? tr("New header and footer profile")
                                  : tr("Header and footer profile \"%1\"").arg(file.chopped(4)));
    profile = HeaderProfiles::NewProfile();
    if (FileExists(path))
        LoadFromFile(path);
    else
        ShowProfile();
}

void frmHeader::LoadFromFile(const QString &path)
{
    profile = ReadHeaderProfile(path);
    ShowProfile();
}

bool frmHeader::SettingToFile(const QString &path)
{
    return HeaderProfiles::Save(path.isEmpty() ? strPath : path, profile, ports.message);
}

void frmHeader::ShowProfile()
{
    const HeaderProfile shown = profile; // the controls report each change on the way
    for (int text = 0; text < textCount; ++text) {
        txtHeader[text]->setText(shown.aTexts[text].strText);
        ReadFontSetting(text);
    }
    for (const SpacePart &part : spaceParts) {
        for (const Margin &margin : margins) {
            findChild<NumberBox *>(QLatin1String(part.prefix) + QLatin1String(margin.name))
                ->setValue(shown.*part.space.*margin.value);
        }
    }
    ui->chkFirstHeader->setChecked(shown.bOnlyFirstHeader);
    ui->chkFirstFooter->setChecked(shown.bOnlyFirstFooter);
    profile = shown;
    ShowPicture();
}

void frmHeader::ReadFontSetting(int text)
{
    const HeaderText &setting = profile.aTexts[text];
    txtHeader[text]->setFont(ToShownFont(setting));
    if (text == lLastText)
        ui->labFont->setText(
            tr("Font: %1, %2 pt")
                .arg(setting.strFontName.left(longestFontName), QString::number(setting.dFontSize)));
}

void frmHeader::ShowPictureSoon()
{
    if (!pictureTimer.isActive())
        pictureTimer.start(lTypingPause);
}

void frmHeader::ShowPicture()
{
    pictureTimer.stop();
    HeaderFields fields;
    fields.lPage = ui->tabPicture->currentIndex() + 1;
    fields.lPageCount = shownPages;
    fields.dateTime = ports.clock.Now();
    fields.strCompanyName = Global().Company.isEmpty() ? tr("Company name") : Global().Company;
    fields.strRecipients = tr("Recipients");
    ui->picPage->ShowProfile(AsReadBack(profile), fields);
}

/// A text that loses the keyboard to a button would forget what is selected in it.
bool frmHeader::eventFilter(QObject *watched, QEvent *event)
{
    const auto box = std::find(txtHeader.begin(), txtHeader.end(), watched);
    if (box != txtHeader.end() && event->type() == QEvent::FocusIn)
        Focus(static_cast<int>(box - txtHeader.begin()));
    if (box != txtHeader.end() && event->type() == QEvent::FocusOut) {
        lCaret = (*box)->hasSelectedText() ? (*box)->selectionStart() : (*box)->cursorPosition();
        lSelected = (*box)->selectionLength();
    }
    return QDialog::eventFilter(watched, event);
}

void frmHeader::Focus(int text)
{
    lLastText = text;
    ReadFontSetting(text);
}

void frmHeader::InsertField(int field)
{
    if (lLastText < 0)
        return;
    QLineEdit *box = txtHeader[lLastText];
    if (!box->hasFocus()) {
        const int caret = lCaret, selected = lSelected;
        box->setFocus(Qt::OtherFocusReason);
        box->setSelection(caret, selected);
        if (selected == 0)
            box->setCursorPosition(caret);
    }
    const qsizetype rest = box->text().size() - box->selectedText().size();
    if (rest + headerMacros[field].size() <= longestText) // a part of the word would mean nothing
        box->insert(headerMacros[field]);
}

void frmHeader::ClickFont()
{
    if (lLastText < 0)
        return;
    HeaderText &text = profile.aTexts[lLastText];
    const std::optional<FontChoice> chosen = ports.fontDialogs.ChooseFont(ToChoice(text));
    if (!chosen)
        return;
    SetFont(text, *chosen);
    ReadFontSetting(lLastText);
    ShowPicture();
}

void frmHeader::ClickImport()
{
    const QString path = ports.fileDialogs.ChooseFile(HeaderProfiles::DialogSetup(Global().strUserFolder));
    if (!path.isEmpty())
        LoadFromFile(path);
}

void frmHeader::ClickSaveAs()
{
    HeaderProfiles::SaveAs(
        ports.fileDialogs.ChooseTarget(HeaderProfiles::DialogSetup(Global().strUserFolder)), profile,
        ports.message);
}

void frmHeader::ClickSave()
{
    const bool isNew = strPath.isEmpty();
    if (isNew) {
        strNewName = HeaderProfiles::AskName(Global().strHeaderPath, ports.message);
        if (strNewName.isEmpty())
            return;
        strPath = HeaderProfiles::PathOf(Global().strHeaderPath, strNewName);
    }
    bSaved = SettingToFile({});
    if (bSaved)
        return accept();
    if (isNew) { // another name may do
        strPath.clear();
        strNewName.clear();
    }
}
