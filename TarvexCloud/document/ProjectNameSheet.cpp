#include "ProjectNameSheet.h"

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
    m_textProjectName = ui.textProjectName;
    m_projectNameIndicator = ui.projectNameIndicator;
    m_confirm = ui.projectNameButtons->addButton(QString(), QDialogButtonBox::AcceptRole);
    m_confirm->setDefault(true);
    auto *cancel = ui.projectNameButtons->addButton(tr("Cancel"), QDialogButtonBox::RejectRole);
    cancel->setAutoDefault(false);
    SheetStyle::makeTitle(m_title);
    SheetStyle::setTabOrderAsShown(ui.projectNameButtons);
    connect(m_confirm, &QPushButton::clicked, this, &ProjectNameSheet::nameConfirmed);
    connect(cancel, &QPushButton::clicked, this, &Sheet::cancelRequested);
}

void ProjectNameSheet::askForName(const QString &name, qint64 tag)
{
    if (!m_textProjectName)
        buildContents();
    const bool isNew = tag == tagOfNewSet;
    m_tag = tag;
    m_givenName = name.isNull() ? u""_s : name;
    m_textProjectName->setText(name);
    m_textProjectName->selectAll();
    m_textProjectName->setFocus();
    m_confirm->setText(isNew ? tr("Create") : tr("Rename"));
    m_title->setText(isNew ? tr("New set") : tr("Rename set"));
    setWindowTitle(isNew ? tr("New Set") : tr("Rename Set"));
}

QString ProjectNameSheet::name() const
{
    return m_textProjectName->isModified() ? m_textProjectName->text() : m_givenName;
}
