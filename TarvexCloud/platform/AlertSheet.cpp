#include "AlertSheet.h"

#include "SheetStyle.h"

#include <QAccessibleWidget>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

namespace {

/// To assistive tools it is what the toolkit's own message box is.
QAccessibleInterface *makeInterface(const QString &, QObject *object)
{
    auto *alert = qobject_cast<AlertSheet *>(object);
    return alert ? new QAccessibleWidget(alert, QAccessible::AlertMessage) : nullptr;
}

} // namespace

AlertSheet::AlertSheet(QWidget *ownWindow)
    : Sheet(ownWindow), m_picture(new QLabel), m_message(new QLabel), m_information(new QLabel)
{
    QAccessible::installFactory(makeInterface);
    QFont bold = font();
    bold.setBold(true);
    m_message->setFont(bold);
    for (QLabel *label : {m_message, m_information}) {
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
    }
    m_information->setMinimumWidth(280);
    const int side = style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, this);
    m_picture->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning, nullptr, this).pixmap(side));

    auto *texts = new QVBoxLayout;
    texts->setSpacing(8);
    texts->addWidget(m_message);
    texts->addWidget(m_information);
    texts->addStretch();
    auto *matter = new QHBoxLayout;
    matter->setSpacing(16);
    matter->addWidget(m_picture, 0, Qt::AlignTop);
    matter->addLayout(texts, 1);

    auto *buttons = new QDialogButtonBox;
    m_default = buttons->addButton(QString(), QDialogButtonBox::AcceptRole);
    m_alternate = buttons->addButton(QString(), QDialogButtonBox::RejectRole);
    m_default->setDefault(true);
    SheetStyle::setTabOrderAsShown(buttons);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 20, 24, 20);
    layout->setSpacing(16);
    layout->addLayout(matter);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);

    connect(m_default, &QPushButton::clicked, this, [this] { end(defaultReturn); });
    connect(m_alternate, &QPushButton::clicked, this, [this] { end(alternateReturn); });
    connect(this, &Sheet::cancelRequested, this, [this] { end(alternateReturn); });
}

void AlertSheet::setTexts(const QString &messageText, const QString &informativeText,
                          const QString &defaultButton, const QString &alternateButton)
{
    setWindowTitle(messageText);
    setAccessibleDescription(informativeText);
    m_message->setText(messageText);
    m_information->setText(informativeText);
    m_default->setText(defaultButton);
    m_alternate->setText(alternateButton);
    m_alternate->setVisible(!alternateButton.isEmpty());
    m_default->setFocus();
}

void AlertSheet::setPicture(const QPixmap &picture)
{
    m_picture->setPixmap(picture);
}

void AlertSheet::end(int returnCode)
{
    if (!isBegun())
        return; // a second click on a sheet that is on its way down
    endSheet();
    Q_EMIT ended(returnCode);
}
