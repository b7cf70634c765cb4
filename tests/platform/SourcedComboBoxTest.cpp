#include "SourcedComboBox.h"

#include <QAccessible>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

struct Names : ComboBoxDataSource
{
    std::vector<std::shared_ptr<QString>> records;

    explicit Names(const QStringList &names)
    {
        for (const QString &name : names)
            records.push_back(std::make_shared<QString>(name));
    }
    int numberOfItemsInComboBox(const SourcedComboBox *) const override
    {
        return static_cast<int>(records.size());
    }
    QString comboBoxObjectValueForItemAtIndex(const SourcedComboBox *, int index) const override
    {
        return *records[static_cast<std::size_t>(index)];
    }
    std::shared_ptr<const void> comboBoxRecordAtIndex(const SourcedComboBox *, int index) const override
    {
        return records[static_cast<std::size_t>(index)];
    }
};

} // namespace

class SourcedComboBoxTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anotherRecordAtAReusedAddressIsStillAnother()
    {
        Names names({u"a"_s});
        SourcedComboBox box;
        box.setDataSource(&names);
        QSignalSpy changes(&box, &SourcedComboBox::selectionDidChange);
        box.selectItemAtIndex(0);
        for (int round = 2; round <= 20; ++round) {
            names = Names({u"again"_s});
            box.reloadData();
            QCOMPARE(changes.count(), round);
        }
    }

    void theSelectedNameStaysUntilTheReload()
    {
        Names names({u"a"_s, u"two\nlines"_s, u" \u200B"_s});
        SourcedComboBox box;
        box.setDataSource(&names);
        QCOMPARE(box.itemText(2), u"(no name)"_s);
        box.selectItemAtIndex(1);
        const QAccessibleInterface *told = QAccessible::queryAccessibleInterface(&box);
        for (const QStringList &refilled : {QStringList(), QStringList({u"x"_s, u"y"_s})}) {
            names = Names(refilled);
            QCOMPARE(told->text(QAccessible::Value), u"two lines"_s);
        }
        box.reloadData();
        QCOMPARE(box.currentText(), u"y"_s);
    }

    void scrollingPastWithoutFocusSelectsNothing()
    {
        const Names names({u"a"_s, u"b"_s});
        QWidget window;
        SourcedComboBox box(&window);
        box.setDataSource(&names);
        box.selectItemAtIndex(0);
        QWheelEvent down(QPointF(1, 1), QPointF(1, 1), QPoint(), QPoint(0, -120), Qt::NoButton,
                         Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&box, &down);
        QCOMPARE(box.indexOfSelectedItem(), 0);
        QVERIFY(!down.isAccepted());
    }
};

QTEST_MAIN(SourcedComboBoxTest)
#include "SourcedComboBoxTest.moc"
