#include "MessageLine.h"

#include "Announcement.h"

#include <QLabel>
#include <QStyle>

constexpr int spaceAfterSign = 6;
constexpr qsizetype spokenCharacters = 500; // who wants to hear more can go there

MessageLine::MessageLine(QWidget *parent) : WrappedLabel(parent), m_sign(new QLabel(this))
{
    setLines(/*least=*/1, /*most=*/5);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Minimum);
    m_sign->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning, nullptr, this).pixmap(signWidth()));
    m_sign->setAccessibleName(tr("Error"));
    m_sign->hide();
}

void MessageLine::setText(const QString &text)
{
    showText(text, /*isError=*/false);
}

void MessageLine::setError(const QString &text)
{
    showText(text, /*isError=*/!text.isEmpty());
}

void MessageLine::showText(const QString &text, bool isError)
{
    m_sign->setVisible(isError);
    const int room = isError ? signWidth() + spaceAfterSign : 0;
    setViewportMargins(isRightToLeft() ? 0 : room, 0, isRightToLeft() ? room : 0, 0);
    setAccessibleName(isError ? tr("Error") : tr("Message"));
    WrappedLabel::setText(text);
    Announcement::make(this, text.left(spokenCharacters)); // the focus is elsewhere
}

int MessageLine::signWidth() const
{
    return fontMetrics().lineSpacing();
}

void MessageLine::resizeEvent(QResizeEvent *event)
{
    WrappedLabel::resizeEvent(event);
    m_sign->setGeometry(QStyle::visualRect(layoutDirection(), rect(), QRect(0, 0, signWidth(), signWidth())));
}
