#pragma once

#include "Sheet.h"

class BusyIndicator;
class QLabel;
class QLineEdit;
class QPushButton;

/// The set-name sheet, shared by creating and renaming. Its contents are built at its first showing.
///
/// The field's tag tells the two apart: the id of the set that is being renamed, or tagOfNewSet.
class ProjectNameSheet : public Sheet
{
    Q_OBJECT
public:
    static constexpr qint64 tagOfNewSet = -1;

    explicit ProjectNameSheet(QWidget *ownWindow);

    /// Puts the name and the tag into the field and words the sheet accordingly. Begin it afterwards.
    void askForName(const QString &name, qint64 tag);

    /// As typed. A name that was not edited comes back as it was given, line breaks included, which a field
    /// of one line could not hold.
    QString name() const;
    qint64 tag() const { return m_tag; }

    /// Null before the first showing.
    QLineEdit *textProjectName() const { return m_textProjectName; }
    void setTextProjectName(QLineEdit *field) { m_textProjectName = field; }
    BusyIndicator *projectNameIndicator() const { return m_projectNameIndicator; }
    void setProjectNameIndicator(BusyIndicator *indicator) { m_projectNameIndicator = indicator; }

Q_SIGNALS:
    void nameConfirmed();

private:
    void buildContents();

    qint64 m_tag = tagOfNewSet;
    QString m_givenName;
    QLabel *m_title = nullptr;
    QLineEdit *m_textProjectName = nullptr;
    BusyIndicator *m_projectNameIndicator = nullptr;
    QPushButton *m_confirm = nullptr;
};
