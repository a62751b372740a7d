#pragma once

#include "compose/Composer.h"
#include "compose/ReceiverCompletion.h"
#include "compose/SelectedReceivers.h"

#include <QDialog>
#include <QPointer>

#include <functional>
#include <memory>
#include <optional>

class ConversionPanel;
class QImage;

namespace Ui {
class frmNewFax;
}

/// The modal windows over a composer. Each gets its owner; an empty answer means cancelled.
struct ComposerDialogs
{
    struct HeaderEdit
    {
        bool bSaved = false;
        QString strNewName; ///< of a new profile
    };

    std::function<std::optional<QString>(QWidget &, const QString &sendOption, int fixedResolution)>
        askOptions;
    std::function<QString(QWidget &, const ContactChoice &)> askContact;
    std::function<std::optional<QList<SelectedReceiver>>(QWidget &, const QList<SelectedReceiver> &)>
        selectReceivers;
    /// An empty path stands for a new profile.
    std::function<HeaderEdit(QWidget &, const QString &path)> editHeader;
};

/// The window in which a user writes one fax.
class frmNewFax final : public QDialog, public ComposerWindow
{
    Q_OBJECT

public:
    frmNewFax(const Ports &systemPorts, const ComposerParts &parts, ComposerDialogs composerDialogs,
              QWidget *parent = nullptr);
    ~frmNewFax() override;

    /// Fills the window and shows it.
    void Open(const ComposerStart &start);
    /// Closes the window as its user does; false when it stays.
    bool TryClose();
    /// Of the row that the window edits; empty for a fax without one.
    const QString &FaxID() const { return composer.FaxID(); }

    // ComposerWindow
    DraftFields Fields() const override;
    void ShowFields(const DraftFields &fields) override;
    void ShowReceivers(const QString &receivers) override;
    void ShowFiles() override;
    void FocusReceivers() override;
    void Hide() override { hide(); }
    void Unload() override;
    bool AskOptions(QString &sendOption, int fixedResolution) override;

public slots:
    void reject() override { close(); }

protected:
    void closeEvent(QCloseEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void SetUpReceivers();
    void ConnectButtons();
    void ConnectChanges();
    void ConnectFiles();
    void LockWhileConverting(bool converting);
    void FillHeaders();
    void SelectHeader(const QString &text);
    void ChooseHeader(int index);
    void EditHeader();
    void DeleteHeader();
    QStringList HeaderEntries() const;
    void ShowHeaderButtons();
    void SelectReceivers();
    bool TypeReceiver(QChar key);
    void AddPicture(const QImage &picture);
    void ShowCounts();
    void EnableFiles();
    void RunGuarded(const QString &routine, const std::function<void()> &run);

    const Ports &ports;
    ComposerDialogs dialogs;
    std::unique_ptr<Ui::frmNewFax> ui;
    Composer composer;
    ReceiverKeys receiverKeys;
    ConversionPanel *picProcess;
    std::function<bool()> maySend;
    QPointer<QWidget> focusBefore; ///< the conversion
    int lRunning = 0;              ///< routines that have not ended
    bool bUnloading = false;
    bool bClosing = false;
    bool bFillingHeaders = false;
};
