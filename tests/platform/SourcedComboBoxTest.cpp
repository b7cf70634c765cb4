#include "SourcedComboBox.h"

#include <QAbstractItemView>
#include <QSignalSpy>
#include <QTest>

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
    void reloadKeepsTheIndexAndTellsOnlyOfAnotherRecord()
    {
        Names names({QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")});
        SourcedComboBox box;
        box.setDataSource(&names);
        box.selectItemAtIndex(1);
        QSignalSpy changes(&box, &SourcedComboBox::selectionDidChange);

        box.reloadData();
        QCOMPARE(box.indexOfSelectedItem(), 1);
        QCOMPARE(changes.count(), 0);

        names.records[1] = std::make_shared<QString>(QStringLiteral("other"));
        box.reloadData();
        QCOMPARE(box.indexOfSelectedItem(), 1);
        QCOMPARE(box.currentText(), QStringLiteral("other"));
        QCOMPARE(changes.count(), 1);

        names.records.resize(1);
        box.reloadData();
        QCOMPARE(box.indexOfSelectedItem(), -1);
        QCOMPARE(changes.count(), 2);
    }

    void anotherRecordAtAReusedAddressIsStillAnother()
    {
        Names names({QStringLiteral("a")});
        SourcedComboBox box;
        box.setDataSource(&names);
        box.selectItemAtIndex(0);
        QSignalSpy changes(&box, &SourcedComboBox::selectionDidChange);
        for (int round = 1; round <= 20; ++round) {
            names.records.clear();
            names.records.push_back(std::make_shared<QString>(QStringLiteral("again")));
            box.reloadData();
            QCOMPARE(changes.count(), round);
        }
    }

    void itemsHandOutTheSourcesOwnStrings()
    {
        const Names names({QStringLiteral("same"), QString(4, u'x')});
        SourcedComboBox box;
        box.setDataSource(&names);
        box.selectItemAtIndex(1);
        QCOMPARE(box.currentText().constData(), names.records[1]->constData());
    }

    void theHighlightedRowCountsAsSelectedUntilEscape()
    {
        const Names names({QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")});
        SourcedComboBox box;
        box.setDataSource(&names);
        box.selectItemAtIndex(0);
        box.show();
        QVERIFY(QTest::qWaitForWindowActive(&box));
        QSignalSpy changing(&box, &SourcedComboBox::selectionIsChanging);
        QSignalSpy dismissed(&box, &SourcedComboBox::willDismiss);

        QTest::keyClick(&box, Qt::Key_Down, Qt::AltModifier);
        QTRY_VERIFY(box.view()->isVisible());
        QTest::keyClick(box.view(), Qt::Key_Down);
        QCOMPARE(box.indexOfSelectedItem(), 1);
        QVERIFY(changing.count() > 0);

        QTest::keyClick(box.view(), Qt::Key_Escape);
        QTRY_COMPARE(dismissed.count(), 1);
        QCOMPARE(box.indexOfSelectedItem(), 0);

        QTest::keyClick(&box, Qt::Key_Down, Qt::AltModifier);
        QTRY_VERIFY(box.view()->isVisible());
        QTest::keyClick(box.view(), Qt::Key_Down);
        QTest::keyClick(box.view(), Qt::Key_Return);
        QTRY_COMPARE(box.indexOfSelectedItem(), 1);
    }

    void scrollingPastWithoutFocusSelectsNothing()
    {
        const Names names({QStringLiteral("a"), QStringLiteral("b")});
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
