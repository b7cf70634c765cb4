// What the user does to the wheel, and what assistive tools are told of it.

#include "ElidedLabel.h"
#include "SideTip.h"
#include "TarvexView.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QToolTip>

namespace {
// Events after which the words beside a slice may have to appear, vanish or move.
bool decidesAboutWords(QEvent::Type type)
{
    return type == QEvent::FocusIn || type == QEvent::FocusOut || type == QEvent::ActivationChange ||
           type == QEvent::Move || type == QEvent::Resize;
}
} // namespace

std::optional<int> TarvexView::pieceAt(const QPointF &position) const
{
    const QPointF point = WheelGeometry::flipped(position, height());
    for (int index = 0; index < WheelGeometry::sliceCount; ++index) {
        const std::shared_ptr<WheelPiece> piece = pieceOfWheel(index);
        if (piece && piece->contains(point))
            return index;
    }
    return std::nullopt;
}

QRect TarvexView::rectOfPiece(int index) const
{
    const QRectF square = WheelGeometry::innerSquare(centre(), index);
    return QRectF(WheelGeometry::flipped(square.bottomLeft(), height()), square.size()).toAlignedRect();
}

void TarvexView::choosePiece(int index)
{
    const bool isEmptyProject = m_mainData && areaCount() == 0;
    if (m_theParent && !isEmptyProject)
        m_theParent->showAreaDetails(areaAt(index), index);
}

// A press that were not taken would hand the release to the widget behind.
void TarvexView::mousePressEvent(QMouseEvent *event)
{
    event->setAccepted(event->button() == Qt::LeftButton);
}

void TarvexView::mouseReleaseEvent(QMouseEvent *event)
{
    event->setAccepted(event->button() == Qt::LeftButton);
    const std::optional<int> hit = event->isAccepted() ? pieceAt(event->position()) : std::nullopt;
    if (!hit)
        return;
    setCurrentPiece(*hit);
    showFocusRing(/*shown=*/false);
    choosePiece(*hit);
}

void TarvexView::mouseMoveEvent(QMouseEvent *event)
{
    m_wordsWanted = false;
    showWordsBesidePiece();
    const std::optional<int> hit = pieceAt(event->position());
    if (hit && areaAt(*hit))
        setCursor(Qt::PointingHandCursor);
    else
        unsetCursor();
    event->ignore();
}

bool TarvexView::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip) {
        const auto *help = static_cast<QHelpEvent *>(event);
        showToolTip(help->pos(), help->globalPos());
        return true;
    }
    const bool isHandled = QWidget::event(event);
    if (event->type() == QEvent::ActivationChange && m_focusRingShown)
        update();
    if (decidesAboutWords(event->type()))
        showWordsBesidePiece();
    return isHandled;
}

void TarvexView::showToolTip(const QPoint &position, const QPoint &globalPosition)
{
    const std::optional<int> hit = pieceAt(position);
    const QString words = hit ? wordsOfPiece(*hit) : QString();
    if (words.isEmpty())
        QToolTip::hideText();
    else
        QToolTip::showText(globalPosition, plainToolTip(words), this,
                           rectOfPiece(*hit).united(QRect(position, QSize(1, 1))));
}

// Down and Right go clockwise whatever the layout direction, since the dial is never mirrored.
std::optional<int> TarvexView::pieceForKey(int key) const
{
    const int count = areaCount();
    switch (key) {
    case Qt::Key_Left:
    case Qt::Key_Up:
        return (currentPiece() + count - 1) % count;
    case Qt::Key_Right:
    case Qt::Key_Down:
        return (currentPiece() + 1) % count;
    case Qt::Key_Home:
        return 0;
    case Qt::Key_End:
        return count - 1;
    default:
        return std::nullopt;
    }
}

void TarvexView::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape && m_words && m_words->isVisible()) {
        m_wordsWanted = false;
        showWordsBesidePiece();
        return;
    }
    const bool plain = (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    if (!plain || areaCount() == 0) {
        event->ignore();
        return;
    }
    if (const std::optional<int> next = pieceForKey(event->key())) {
        setCurrentPiece(*next);
        showFocusRing(/*shown=*/true);
        return;
    }
    const bool chooses =
        event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter || event->key() == Qt::Key_Space;
    if (!chooses || event->isAutoRepeat()) {
        event->ignore();
        return;
    }
    showFocusRing(/*shown=*/true);
    choosePiece(currentPiece());
}

void TarvexView::setCurrentPiece(int index)
{
    if (index < 0 || index >= areaCount() || index == m_currentPiece)
        return;
    m_currentPiece = index;
    update();
    showWordsBesidePiece();
    if (hasFocus())
        announceFocus();
}

void TarvexView::showFocusRing(bool shown)
{
    m_focusRingShown = shown;
    m_wordsWanted = shown;
    update();
    showWordsBesidePiece();
}

void TarvexView::showWordsBesidePiece()
{
    const bool areShown = m_wordsWanted && m_focusRingShown && hasFocus() && isActiveWindow();
    const QString words = areShown ? wordsOfPiece(currentPiece()) : QString();
    if (words.isEmpty()) {
        if (m_words)
            m_words->hide();
        return;
    }
    if (!m_words)
        m_words = new SideTip(window());
    QToolTip::hideText();
    const QRectF piece = WheelGeometry::sliceOutline(centre(), currentPiece()).boundingRect();
    const QPointF corner = WheelGeometry::flipped(piece.bottomLeft(), height());
    m_words->showBeside(QRect(mapTo(window(), corner.toPoint()), piece.size().toSize()), words);
}

// Coming back from a sheet or another window, the ring and the words are as they were before.
void TarvexView::focusInEvent(QFocusEvent *event)
{
    QWidget::focusInEvent(event);
    const Qt::FocusReason reason = event->reason();
    if (reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason || reason == Qt::ShortcutFocusReason)
        showFocusRing(/*shown=*/true);
    else if (reason == Qt::MouseFocusReason)
        showFocusRing(/*shown=*/false);
    // The toolkit announces the wheel itself right after this event; the slice has to come last.
    m_focusAnnouncement.start();
}

void TarvexView::setPercentTexts(const PercentTexts &texts)
{
    m_percentTexts = texts;
    areasMayHaveChanged();
}

void TarvexView::areasMayHaveChanged()
{
    // By Tab only: a click leaves the focus, and any text being edited, where it was.
    setFocusPolicy(areaCount() > 0 ? Qt::TabFocus : Qt::NoFocus);

    const std::vector<Description> before = std::move(m_announced);
    m_announced.clear();
    for (int index = 0; index < areaCount(); ++index) {
        const TVXAreaPtr area = areaAt(index);
        const auto at = static_cast<std::size_t>(index);
        m_announced.push_back({area->name(), area->valueOfArea(), wordsOfPiece(index)});
        if (at < before.size())
            announceDifferences(index, before[at], m_announced[at]);
        else
            announceChange(QAccessible::ObjectCreated, index);
    }
    showWordsBesidePiece();
}

void TarvexView::announceDifferences(int index, const Description &before, const Description &now)
{
    if (before.name != now.name)
        announceChange(QAccessible::NameChanged, index);
    if (before.value != now.value) {
        QAccessibleValueChangeEvent event(this, now.value);
        event.setChild(index);
        announce(event);
    }
    if (before.words != now.words)
        announceChange(QAccessible::DescriptionChanged, index);
}

void TarvexView::announceFocus()
{
    if (hasFocus() && areaCount() > 0)
        announceChange(QAccessible::Focus, currentPiece());
}

void TarvexView::announceChange(QAccessible::Event change, int index)
{
    QAccessibleEvent event(this, change);
    event.setChild(index);
    announce(event);
}
