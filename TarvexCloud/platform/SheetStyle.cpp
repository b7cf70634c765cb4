#include "SheetStyle.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QLayout>
#include <QPushButton>
#include <QStyle>

constexpr int spaceInButton = 16;

void SheetStyle::makeTitle(QLabel *label)
{
    QFont title = label->font();
    title.setBold(true);
    title.setPixelSize(qRound(QFontInfo(label->font()).pixelSize() * 1.25));
    label->setFont(title);
}

void SheetStyle::mirrorLabels(const QWidget *sheet)
{
    const auto labels = sheet->findChildren<QLabel *>();
    for (QLabel *label : labels) {
        const Qt::Alignment alignment = label->alignment();
        if (label->isRightToLeft() && !(alignment & Qt::AlignAbsolute))
            label->setAlignment(QStyle::visualAlignment(Qt::RightToLeft, alignment) | Qt::AlignAbsolute);
    }
}

void SheetStyle::setTabOrderAsShown(const QDialogButtonBox *buttons)
{
    QWidget *previous = nullptr;
    for (int i = 0; i < buttons->layout()->count(); ++i) {
        QWidget *button = buttons->layout()->itemAt(i)->widget();
        if (previous && button)
            QWidget::setTabOrder(previous, button);
        previous = button ? button : previous;
    }
}

void SheetStyle::makeRoomy(QPushButton *button, const QPushButton *other)
{
    button->setMinimumSize(button->sizeHint().width() + spaceInButton, other->sizeHint().height());
}
