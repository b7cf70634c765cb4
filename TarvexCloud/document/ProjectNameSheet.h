#pragma once

#include "Sheet.h"

#include <QPointer>

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

    /// What the field says. A name that it still shows as it was given comes back so, line breaks included,
    /// which the field does not show.
    QString name() const;
    qint64 tag() const { return m_tag; }

    /// What is being done, in place of the hint; empty for nothing.
    void setStatus(const QString &text);

    /// Null before the first showing, unless set by then. One that is set is used from then on instead of the
    /// sheet's own; it is not owned.
    QLineEdit *textProjectName() const;
    void setTextProjectName(QLineEdit *field);
    BusyIndicator *projectNameIndicator() const;
    void setProjectNameIndicator(BusyIndicator *indicator);

Q_SIGNALS:
    void nameConfirmed();

private:
    void buildContents();

    qint64 m_tag = tagOfNewSet;
    QString m_givenName;
    QLabel *m_title = nullptr;
    QLabel *m_hint = nullptr;
    QPointer<QLineEdit> m_textProjectName;
    QPointer<BusyIndicator> m_projectNameIndicator;
    QPushButton *m_confirm = nullptr;
};
