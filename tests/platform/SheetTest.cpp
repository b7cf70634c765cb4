#include "Sheet.h"
#include "SheetShade.h"

#include <QLineEdit>
#include <QMainWindow>
#include <QMenuBar>
#include <QPushButton>
#include <QScreen>
#include <QSignalSpy>
#include <QSlider>
#include <QTest>
#include <QVBoxLayout>
#include <QWindow>

class SheetTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aSecondSheetWaitsForTheFirst()
    {
        QMainWindow one;
        QMainWindow two;
        one.show();
        two.show();
        Sheet first(&one);
        Sheet second(&two);
        Sheet third(&one);
        first.beginOn(&one);
        second.beginOn(&one);
        third.beginOn(&one);
        QVERIFY(first.isVisible() && !second.isVisible() && !third.isVisible());

        first.endSheet();
        QTRY_VERIFY(second.isVisible());
        QVERIFY(!third.isVisible());
        QCOMPARE(second.parentWidget(), &two); // attached to the other window, still its own window's child
        QCOMPARE(second.windowHandle()->transientParent(), one.windowHandle());

        second.endSheet();
        first.beginOn(nullptr); // which it gave way to, before those waiting
        QCoreApplication::processEvents();
        QVERIFY(first.isVisible() && !third.isVisible());

        third.endSheet(); // gives up its place in the queue
        first.endSheet();
        QCoreApplication::processEvents();
        QVERIFY(!third.isVisible());
    }

    void aSheetStandsAtTheSamePlaceAtEveryShowingAndDimsItsWindow()
    {
        QMainWindow window;
        window.setCentralWidget(new QWidget);
        window.menuBar()->addAction(QStringLiteral("File"));
        window.resize(500, 400);
        window.show();
        Sheet sheet(&window);
        QVBoxLayout layout(&sheet);
        QLineEdit field;
        layout.addWidget(&field);
        sheet.beginOn(&window);
        const QRect place = sheet.geometry();
        QVERIFY(qAbs(place.center().x() - window.geometry().center().x()) <= 1);
        QCOMPARE(sheet.frameGeometry().top(), window.centralWidget()->mapToGlobal(QPoint()).y());
        window.resize(600, 500);
        const auto *shade = window.findChild<SheetShade *>();
        QCOMPARE(shade->geometry(), window.rect());

        window.resize(500, 400);
        sheet.move(0, 300);
        sheet.endSheet();
        QTRY_VERIFY(window.isActiveWindow() && !shade->isVisible());
        sheet.beginOn(&window);
        QCOMPARE(sheet.geometry(), place);
        window.move(window.screen()->availableGeometry().bottomRight() - QPoint(60, 60));
        sheet.endSheet();
        sheet.beginOn(&window);
        QVERIFY(window.screen()->availableGeometry().contains(sheet.frameGeometry()));
    }

    void aDoubleClickThatBringsASheetUpEndsBeforeIt()
    {
        QMainWindow window;
        QPushButton opener(&window);
        Sheet sheet(&window);
        QSlider slider(Qt::Horizontal, &sheet);
        connect(&opener, &QPushButton::clicked, &sheet, [&] { sheet.beginOn(&window); });
        window.show();
        for (const bool byMouse : {true, false}) {
            byMouse ? QTest::mouseClick(&opener, Qt::LeftButton) : QTest::keyClick(&opener, Qt::Key_Space);
            QTest::mouseClick(sheet.windowHandle(), Qt::LeftButton, {}, slider.geometry().center());
            QCOMPARE(slider.value() == 0, byMouse);
            sheet.endSheet();
        }
    }

    void escapeAndCloseBoxAskForCancelAndCloseNothing()
    {
        QMainWindow window;
        window.show();
        Sheet sheet(&window);
        QLineEdit field(&sheet);
        QSignalSpy cancels(&sheet, &Sheet::cancelRequested);
        sheet.beginOn(&window);
        QVERIFY(QTest::qWaitForWindowActive(&sheet));
        QTest::keyClick(&field, Qt::Key_Escape);
        QCOMPARE(cancels.count(), 1);
        sheet.windowHandle()->close();
        QCOMPARE(cancels.count(), 2);
        QVERIFY(sheet.isVisible());
        QCOMPARE(sheet.windowModality(), Qt::WindowModal);
    }
};

QTEST_MAIN(SheetTest)
#include "SheetTest.moc"
