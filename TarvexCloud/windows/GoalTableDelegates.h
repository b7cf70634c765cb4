#pragma once

#include <QComboBox>
#include <QStyledItemDelegate>
#include <QTimer>

/// The tick of a goal: a box in the middle of its cell, flipped by a click anywhere in the cell.
class GoalCheckDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    bool editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                     const QModelIndex &index) override;
};

/// The text of a goal, edited in place. A text nobody changed stays as it is, line breaks included, which a
/// field of one line cannot show. A text too long for its cell is whole in its tooltip.
class GoalTextDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override;
    bool helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                   const QModelIndex &index) override;

Q_SIGNALS:
    /// The text in the open field is another.
    void textChanged();
};

/// A list of words that comes up by itself, and says when it is gone again, with or without a choice.
class GoalPriorityPopUp : public QComboBox
{
    Q_OBJECT
public:
    explicit GoalPriorityPopUp(QWidget *parent);

Q_SIGNALS:
    void dismissed();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QTimer m_opening;
    QTimer m_dismissing; // a choice is reported after the list's hiding, and counts
};

/// The priority of a goal, chosen from a pop-up. A priority without a word shows no choice there, and stays
/// until one is made.
class GoalPriorityDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override;
};
