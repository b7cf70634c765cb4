#include "ProjectNameSheet.h"

#include "BusyIndicator.h"
#include "OneLineEdit.h"
#include "SheetStyle.h"
#include "ui_ProjectNameSheet.h"

#include <QPushButton>

using namespace Qt::StringLiterals;

ProjectNameSheet::ProjectNameSheet(QWidget *ownWindow) : Sheet(ownWindow) {}

void ProjectNameSheet::buildContents()
{
    Ui::ProjectNameSheet ui;
    ui.setupUi(this);
    m_title = ui.labelProjectNameTitle;
    m_hint = ui.labelProjectNameHint;
    if (!m_textProjectName)
        m_textProjectName = ui.textProjectName;
    if (!m_projectNameIndicator)
        m_projectNameIndicator = ui.projectNameIndicator;
    m_confirm = ui.projectNameButtons->addButton(QString(), QDialogButtonBox::AcceptRole);
    m_confirm->setDefault(true);
    auto *cancel = ui.projectNameButtons->addButton(tr("Cancel"), QDialogButtonBox::RejectRole);
    SheetStyle::makeTitle(m_title);
    SheetStyle::setTabOrderAsShown(ui.projectNameButtons);
    connect(m_confirm, &QPushButton::clicked, this, &ProjectNameSheet::nameConfirmed);
    connect(cancel, &QPushButton::clicked, this, &Sheet::cancelRequested);
}

void ProjectNameSheet::askForName(const QString &name, qint64 tag)
{
    if (!m_confirm)
        buildContents();
    const bool isNew = tag == tagOfNewSet;
    m_tag = tag;
    m_givenName = name.isNull() ? u""_s : name;
    if (m_textProjectName) {
        if (auto *own = qobject_cast<OneLineEdit *>(m_textProjectName))
            own->fillIn(m_givenName);
        else
            m_textProjectName->setText(m_givenName);
        m_textProjectName->setFocus(); // a dialog that comes up selects the text of its focus
    }
    setStatus(QString());
    m_confirm->setText(isNew ? tr("Create") : tr("Rename"));
    m_title->setText(isNew ? tr("New set") : tr("Rename set"));
    setWindowTitle(isNew ? tr("New Set") : tr("Rename Set"));
}

QString ProjectNameSheet::name() const
{
    if (const auto *own = qobject_cast<OneLineEdit *>(m_textProjectName))
        return own->textOrFilledIn();
    return m_textProjectName ? m_textProjectName->text() : m_givenName;
}

void ProjectNameSheet::setStatus(const QString &text)
{
    m_hint->setText(text.isEmpty() ? tr("A date in the name makes it easy to compare sets later.") : text);
}

QLineEdit *ProjectNameSheet::textProjectName() const
{
    return m_textProjectName;
}

void ProjectNameSheet::setTextProjectName(QLineEdit *field)
{
    m_textProjectName = field;
}

BusyIndicator *ProjectNameSheet::projectNameIndicator() const
{
    return m_projectNameIndicator;
}

void ProjectNameSheet::setProjectNameIndicator(BusyIndicator *indicator)
{
    m_projectNameIndicator = indicator;
}
