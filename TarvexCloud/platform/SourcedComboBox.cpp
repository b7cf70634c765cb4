#include "SourcedComboBox.h"

#include "ElidedLabel.h"

#include <QAbstractListModel>
#include <QHelpEvent>
#include <QSignalBlocker>
#include <QToolTip>
#include <QWheelEvent>

class SourcedComboBox::Items : public QAbstractListModel
{
public:
    explicit Items(SourcedComboBox *box) : QAbstractListModel(box), m_box(box) {}

    int rowCount(const QModelIndex &parent = {}) const override
    {
        return parent.isValid() || !m_box->m_source ? 0 : m_box->m_source->numberOfItemsInComboBox(m_box);
    }

    QVariant data(const QModelIndex &index, int role) const override
    {
        const bool isForText = role == Qt::DisplayRole || role == Qt::EditRole; // the latter in macOS's list
        if (!index.isValid() || (!isForText && role != Qt::ToolTipRole))
            return {};
        const bool isSelected = index.row() == m_box->m_selectedIndex;
        if (!isSelected && index.row() >= rowCount())
            return {};
        const QString text = isSelected ? m_box->m_selectedText : m_box->textOfItem(index.row());
        const QString shown = shownNameOf(text);
        if (isForText)
            return shown;
        return plainToolTip(shown == singleLineOf(text) ? text : shown);
    }

    void reset()
    {
        beginResetModel();
        endResetModel();
    }

private:
    SourcedComboBox *m_box;
};

SourcedComboBox::SourcedComboBox(QWidget *parent) : QComboBox(parent), m_items(new Items(this))
{
    setModel(m_items);
    setFocusPolicy(Qt::StrongFocus);
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    connect(this, &QComboBox::currentIndexChanged, this, &SourcedComboBox::noteSelection);
    connect(this, &QComboBox::highlighted, this, [this](int index) {
        if (!m_listOpen)
            return;
        m_highlighted = index;
        Q_EMIT selectionIsChanging();
    });
}

void SourcedComboBox::setDataSource(const ComboBoxDataSource *source)
{
    m_source = source;
    reloadData();
}

int SourcedComboBox::indexOfSelectedItem() const
{
    return m_highlighted >= 0 ? m_highlighted : currentIndex();
}

void SourcedComboBox::selectItemAtIndex(int index)
{
    {
        const QSignalBlocker quiet(this); // reported below, once, by record
        setCurrentIndex(index >= 0 && index < count() ? index : -1);
    }
    noteSelection();
}

void SourcedComboBox::reloadData()
{
    const int index = currentIndex();
    {
        const QSignalBlocker quiet(this); // a reset by itself moves the selection to the first row
        m_items->reset();
        setCurrentIndex(index < count() ? index : -1);
    }
    noteSelection();
}

void SourcedComboBox::noteSelection()
{
    const int index = currentIndex();
    const std::shared_ptr<const void> record =
        m_source && index >= 0 ? m_source->comboBoxRecordAtIndex(this, index) : nullptr;
    m_selectedText = textOfItem(index);
    setAccessibleDescription(singleLineOf(m_selectedText) == m_selectedText ? QString() : m_selectedText);
    update();
    if (index == m_selectedIndex && record == m_selectedRecord)
        return;
    m_selectedIndex = index;
    m_selectedRecord = record;
    Q_EMIT selectionDidChange();
}

QString SourcedComboBox::textOfItem(int index) const
{
    return m_source && index >= 0 ? m_source->comboBoxObjectValueForItemAtIndex(this, index) : QString();
}

bool SourcedComboBox::event(QEvent *event)
{
    if (event->type() != QEvent::ToolTip)
        return QComboBox::event(event);
    // Set as the box's own, it would be read out by assistive tools with its markup.
    QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(), currentData(Qt::ToolTipRole).toString(),
                       this);
    return true;
}

void SourcedComboBox::showPopup()
{
    m_listOpen = true;
    QComboBox::showPopup();
}

void SourcedComboBox::hidePopup()
{
    const bool wasOpen = std::exchange(m_listOpen, false);
    m_highlighted = -1;
    QComboBox::hidePopup();
    if (wasOpen)
        Q_EMIT willDismiss();
}

void SourcedComboBox::wheelEvent(QWheelEvent *event)
{
    if (hasFocus())
        QComboBox::wheelEvent(event);
    else
        event->ignore(); // scrolling past must not switch the set
}
