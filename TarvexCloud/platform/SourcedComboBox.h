#pragma once

#include <memory>
#include <QComboBox>

class SourcedComboBox;

/// Where a combo box gets its items from, asked anew each time they are needed. Only the selected item's text
/// stays as it was until the next reload, so that the box does not go blank while its source is refilled.
class ComboBoxDataSource
{
public:
    virtual ~ComboBoxDataSource() = default;
    virtual int numberOfItemsInComboBox(const SourcedComboBox *comboBox) const = 0;
    /// The item's text, or a null string where there is none. An item without a visible text is listed under
    /// a stand-in.
    virtual QString comboBoxObjectValueForItemAtIndex(const SourcedComboBox *comboBox, int index) const = 0;
    /// What stands behind an item. The box keeps it only to tell that one record from another.
    virtual std::shared_ptr<const void> comboBoxRecordAtIndex(const SourcedComboBox *comboBox,
                                                              int index) const = 0;
};

/// A combo box that holds no items of its own.
///
/// The toolkit reports changes of the index; this box reports changes of what is selected: also when the
/// index stayed and the record behind it is another one. While the list is open, the highlighted row counts
/// as selected, and leaving the list by Escape takes that back.
class SourcedComboBox : public QComboBox
{
    Q_OBJECT
public:
    explicit SourcedComboBox(QWidget *parent = nullptr);

    /// Not owned; must outlive the box or be taken back with null.
    void setDataSource(const ComboBoxDataSource *source);
    const ComboBoxDataSource *dataSource() const { return m_source; }

    /// -1 where nothing is selected.
    int indexOfSelectedItem() const;
    /// An index outside the list selects nothing.
    void selectItemAtIndex(int index);
    /// Fetches the items again. The selected index stays where it is while the list is long enough.
    void reloadData();

    void showPopup() override;
    void hidePopup() override;

Q_SIGNALS:
    void selectionDidChange();
    void selectionIsChanging();
    void willDismiss();

protected:
    bool event(QEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    class Items;
    void noteSelection();
    QString textOfItem(int index) const;

    const ComboBoxDataSource *m_source = nullptr;
    Items *m_items;
    std::shared_ptr<const void> m_selectedRecord; // held: a freed record's address may come back
    QString m_selectedText;
    int m_selectedIndex = -1;
    int m_highlighted = -1;
    bool m_listOpen = false;
};
