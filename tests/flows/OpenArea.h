#pragma once

#include "Client.h"

#include "AreaValueSlider.h"
#include "AreaWindowController.h"
#include "GoalTableModel.h"
#include "GoalTableView.h"
#include "MnemonicLabel.h"

inline QByteArray goals(const QList<QList<QByteArray>> &rows)
{
    return xmlAnswer({"id", "name", "priority", "checked"}, rows);
}

inline const QList<QList<QByteArray>> three = {
    {"101", "Run", "9", "y"}, {"102", "Read &amp; write", "3", "n"}, {"4294967401", "Sing", "0", "Y"}};
inline const QByteArray getGoals = "p1=get-goals" + annsDigests + "&p4=7&p5=3"; // the set, then the area

inline QByteArray sent(const QByteArray &kind, const QByteArray &fields)
{
    return "p1=" + kind + annsDigests + fields;
}

// A signed-in client whose third area, "Money" with the value 2, was opened.
struct OpenArea : SheetClient
{
    explicit OpenArea(const ServiceReply &reply = httpReply(goals(three)),
                      const QByteArray &areas = areasAnswer(eightNames))
    {
        service.answer("get-goals", reply);
        service.answer("get-areas", areas);
        document = openSignedIn();
        sheet = document->wndAreaDetails();
        controller = sheet->findChild<AreaWindowController *>();
        openPiece(2);
    }
    void openPiece(int index)
    {
        const auto sentBefore = service.bodies().size();
        document->wheelView()->choosePiece(index);
        table = controller->tableViewTargets();
        wasSaveOfferedThen = isOffered("Save");
        if (!QTest::qWaitFor([&] {
                return controller->isAlreadyLoadedDatas() && !Client::controller.isBusy() &&
                       service.bodies().size() > sentBefore;
            }))
            qFatal("the area did not load");
    }
    QList<QByteArray> written() const { return service.bodies().mid(4); }
    QModelIndex cell(int row, int column) const { return table->model()->index(row, column); }
    QString state() const { return sheet->findChild<QLabel *>(u"labelState"_s)->text(); }
    bool isOffered(const char *text) const { return button(text)->isEnabled(); }
    bool isShown(const char *text) const { return button(text)->isVisible(); }
    void clickCell(int row, int column) const
    {
        QTest::mouseClick(table->viewport(), Qt::LeftButton, {},
                          table->visualRect(cell(row, column)).center());
    }
    void doubleClickCell(int row, int column) const
    {
        const QPoint place = table->visualRect(cell(row, column)).center();
        QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, place);
        QTest::mouseDClick(table->viewport(), Qt::LeftButton, {}, place); // the press alone
        QTest::mouseRelease(table->viewport(), Qt::LeftButton, {}, place);
    }
    QLineEdit *openEditor(int row) const
    {
        table->setCurrentIndex(cell(row, GoalTableModel::GoalColumn));
        QTest::keyClick(table, Qt::Key_F2);
        return editor();
    }
    QLineEdit *editor() const { return qobject_cast<QLineEdit *>(sheet->focusWidget()); }
    QString texts() const
    {
        QStringList all;
        for (int row = 0; row < table->model()->rowCount(); ++row)
            all += cell(row, GoalTableModel::GoalColumn).data().toString();
        return all.join(u',');
    }
    QAccessibleInterface *accessibleCell(int row, int column) const
    {
        return QAccessible::queryAccessibleInterface(table)->tableInterface()->cellAt(row, column);
    }

    AreaWindowController *controller;
    GoalTableView *table;
    bool wasSaveOfferedThen = false; // at first
};
