#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

/// Contacts or users to choose one from, since several match what was typed.
struct ContactChoice
{
    enum Kind { chContact, chUser };

    QString strKeyword; ///< part of a name, as typed
    Kind lKind = chContact;

    /// "Name(Fax)" or "UserName[LoginName]" of all that match. Raises the errors of the database.
    QStringList ReadLines() const;
};

/// What ";" makes of the recipients' text: the name behind the last ";" becomes the contact or user that it
/// tells. Nothing when the name is blank or matches none.
struct ReceiverCompletion
{
    std::optional<QString> strText;      ///< new text of the box
    std::optional<ContactChoice> choice; ///< to be asked; the answer, if there is one, makes the text
    QString strHead;                     ///< what stands before the name

    /// Completes the whole text of the box; where the caret stands does not matter. Raises the errors of the
    /// database.
    static ReceiverCompletion Complete(const QString &text);
    /// The text with the line that was chosen.
    QString WithChosen(const QString &line) const;
};

/// The keys of the recipients' box `txtReceive`, for the form that shows it.
class ReceiverKeys final
{
public:
    /// Shows the choice, modal; the chosen line, empty for none.
    using Ask = std::function<QString(const ContactChoice &)>;

    explicit ReceiverKeys(Ask askUser);

    /// The new text of the box, its caret then at the end: the key is swallowed. Without one the key enters
    /// the box. Raises the errors of the database.
    std::optional<QString> txtReceive_KeyPress(QChar key, const QString &text) const;

private:
    Ask ask;
};
