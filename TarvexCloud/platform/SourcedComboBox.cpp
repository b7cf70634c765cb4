#include "SourcedComboBox.h"

#include "ElidedLabel.h"

#include <QAbstractListModel>
#include <QSignalBlocker>
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
        if (!m_box->m_source || index.row() < 0 || index.row() >= rowCount())
            return {};
        const QString text = m_box->m_source->comboBoxObjectValueForItemAtIndex(m_box, index.row());
        if (role == Qt::DisplayRole)
            return singleLineOf(text);
        return role == Qt::ToolTipRole ? QVariant(plainToolTip(text)) : QVariant();
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
    std::shared_ptr<const void> record;
    if (m_source && index >= 0)
        record = m_source->comboBoxRecordAtIndex(this, index);
    setToolTip(itemData(index, Qt::ToolTipRole).toString());
    if (index == m_selectedIndex && record == m_selectedRecord)
        return;
    m_selectedIndex = index;
    m_selectedRecord = record;
    Q_EMIT selectionDidChange();
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
