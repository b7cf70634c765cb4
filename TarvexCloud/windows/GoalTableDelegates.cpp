#include "GoalTableDelegates.h"

#include "ElidedLabel.h"
#include "OneLineEdit.h"
#include "Words.h"

#include <limits>
#include <QAbstractItemView>
#include <QApplication>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

namespace {

constexpr float outlineStrength = 0.55F;

const QStyle *styleOf(const QStyleOptionViewItem &option)
{
    return option.widget ? option.widget->style() : QApplication::style();
}

} // namespace

void GoalCheckDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                              const QModelIndex &index) const
{
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    cell.features &= ~QStyleOptionViewItem::HasCheckIndicator;
    const QStyle *style = styleOf(cell);
    style->drawControl(QStyle::CE_ItemViewItem, &cell, painter, cell.widget);

    const QSize size(style->pixelMetric(QStyle::PM_IndicatorWidth, &cell, cell.widget),
                     style->pixelMetric(QStyle::PM_IndicatorHeight, &cell, cell.widget));
    cell.rect = QStyle::alignedRect(cell.direction, Qt::AlignCenter, size, option.rect);
    cell.state.setFlag(QStyle::State_HasFocus, false);
    cell.state.setFlag(QStyle::State_On, cell.checkState == Qt::Checked);
    cell.state.setFlag(QStyle::State_Off, cell.checkState != Qt::Checked);
    style->drawPrimitive(QStyle::PE_IndicatorItemViewItemCheck, &cell, painter, cell.widget);

    // On a dark base some styles leave the box of an open goal all but invisible.
    const bool isSelected = option.state.testFlag(QStyle::State_Selected);
    QColor outline = option.palette.color(isSelected ? QPalette::HighlightedText : QPalette::Text);
    outline.setAlphaF(outlineStrength);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(outline);
    painter->drawRoundedRect(QRectF(cell.rect).adjusted(0.5, 0.5, -0.5, -0.5), /*xRadius=*/2, /*yRadius=*/2);
    painter->restore();
}

bool GoalCheckDelegate::editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &,
                                    const QModelIndex &index)
{
    if (event->type() != QEvent::MouseButtonRelease)
        return false;
    const auto *mouse = static_cast<QMouseEvent *>(event);
    if (mouse->button() != Qt::LeftButton || mouse->modifiers() != Qt::NoModifier)
        return false;
    return model->setData(index, {}, Qt::CheckStateRole);
}

QWidget *GoalTextDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &,
                                        const QModelIndex &) const
{
    auto *field = new OneLineEdit(parent);
    field->setMaxLength(std::numeric_limits<int>::max());
    field->setAccessibleName(tr("Goal text"));
    auto *self = const_cast<GoalTextDelegate *>(this); // the toolkit makes editors in const delegates
    connect(field, &QLineEdit::textChanged, self, &GoalTextDelegate::textChanged);
    return field;
}

void GoalTextDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    static_cast<OneLineEdit *>(editor)->fillIn(index.data(Qt::EditRole).toString());
}

void GoalTextDelegate::setModelData(QWidget *editor, QAbstractItemModel *model,
                                    const QModelIndex &index) const
{
    const auto *field = static_cast<OneLineEdit *>(editor);
    if (field->isChanged())
        model->setData(index, field->textOrFilledIn());
}

bool GoalTextDelegate::helpEvent(QHelpEvent *event, QAbstractItemView *view,
                                 const QStyleOptionViewItem &option, const QModelIndex &index)
{
    if (event->type() != QEvent::ToolTip || !index.isValid())
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    const QString text = index.data(Qt::EditRole).toString();
    const bool isWhole =
        !text.contains(u'\n') && sizeHint(option, index).width() <= view->visualRect(index).width();
    QToolTip::showText(event->globalPos(), isWhole ? QString() : plainToolTip(text), view);
    return true;
}

GoalPriorityPopUp::GoalPriorityPopUp(QWidget *parent) : QComboBox(parent)
{
    addItems(Words::priorities());
    // The list can be left in many ways; all of them hide its frame.
    view()->parentWidget()->installEventFilter(this);
    m_dismissing.setSingleShot(true);
    connect(&m_dismissing, &QTimer::timeout, this, &GoalPriorityPopUp::dismissed);
    m_opening.setSingleShot(true);
    connect(&m_opening, &QTimer::timeout, this, [this] {
        if (isVisible())
            showPopup();
    });
    m_opening.start();
}

bool GoalPriorityPopUp::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Hide)
        m_dismissing.start();
    return QComboBox::eventFilter(watched, event);
}

QWidget *GoalPriorityDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &,
                                            const QModelIndex &) const
{
    auto *popUp = new GoalPriorityPopUp(parent);
    popUp->setAccessibleName(tr("Priority"));
    auto *self = const_cast<GoalPriorityDelegate *>(this);
    connect(popUp, &QComboBox::activated, self, [self, popUp] {
        Q_EMIT self->commitData(popUp);
        Q_EMIT self->closeEditor(popUp);
    });
    connect(popUp, &GoalPriorityPopUp::dismissed, self, [self, popUp] {
        if (popUp->isVisible())
            Q_EMIT self->closeEditor(popUp, RevertModelCache);
    });
    return popUp;
}

void GoalPriorityDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    auto *popUp = static_cast<QComboBox *>(editor);
    popUp->setCurrentIndex(popUp->findText(index.data(Qt::EditRole).toString()));
}

void GoalPriorityDelegate::setModelData(QWidget *editor, QAbstractItemModel *model,
                                        const QModelIndex &index) const
{
    const auto *popUp = static_cast<const QComboBox *>(editor);
    if (popUp->currentIndex() >= 0)
        model->setData(index, popUp->currentText());
}
