#include "Client.h"

#include "SheetShade.h"

#include <QDialogButtonBox>

/// What every sheet has in common, looked at in each of them.
class SheetsFlowTest : public QObject
{
    Q_OBJECT

private:
    static QPushButton *defaultButton(const Sheet *sheet)
    {
        const auto buttons = sheet->findChildren<QPushButton *>();
        const auto found =
            std::find_if(buttons.begin(), buttons.end(), [](const QPushButton *b) { return b->isDefault(); });
        return found == buttons.end() ? nullptr : *found;
    }

    static Sheet *openSheet(TarvexDocument *document, const QByteArray &command)
    {
        if (command == "area")
            document->showAreaDetails(document->project()->areas()->front(), /*ofIndex=*/0);
        else if (command == "register")
            document->registerClicked();
        else if (command != "sign-in")
            Client::trigger(document, command.constData());
        const auto sheets = document->window()->findChildren<Sheet *>();
        const auto shown =
            std::find_if(sheets.begin(), sheets.end(), [](const Sheet *sheet) { return sheet->isVisible(); });
        if (shown == sheets.end() || !QTest::qWaitForWindowActive(*shown) ||
            !QTest::qWaitFor([&] { return defaultButton(*shown)->isEnabled(); })) // what it needs is loaded
            qFatal("the sheet did not come up");
        return *shown;
    }

private Q_SLOTS:
    void returnPressesTheButtonThatHasTheFocus_data() { addSampleRows("sheets.txt"); }
    void returnPressesTheButtonThatHasTheFocus()
    {
        const int sent = sampleRow<1>().front().toInt();
        Client client;
        client.service.answer("get-goals", QByteArray("<answer/>"));
        client.service.answer("get-random-goal", xmlAnswer({"id", "name", "area"}, {{"1", "Sing", "1"}}));
        TarvexDocument *document = sent > 0 ? client.openSignedIn() : client.open();
        const QPointer window = document->window();
        const QPointer sheet = openSheet(document, QTest::currentDataTag());
        const QPointer shade = window->findChild<SheetShade *>();
        QVERIFY(shade && shade->isVisible() && shade->geometry() == window->rect());
        QVERIFY(sheet->screen()->availableGeometry().contains(sheet->frameGeometry()));

        QTRY_VERIFY(client.service.requests().size() == sent && !client.controller.isBusy());
        QPushButton *pressed = nullptr;
        const QPushButton *const byDefault = defaultButton(sheet);
        QPushButton *cancel = nullptr;
        const auto *box = sheet->findChild<QDialogButtonBox *>();
        for (QPushButton *button : sheet->findChildren<QPushButton *>()) {
            if (box->buttonRole(button) == QDialogButtonBox::RejectRole && button->isVisible())
                cancel = button;
            else
                disconnect(button, &QPushButton::clicked, nullptr, nullptr);
            connect(button, &QPushButton::clicked, this, [&pressed, button] { pressed = button; });
        }
        for (QWidget *control : sheet->findChildren<QWidget *>()) {
            auto *button = qobject_cast<QPushButton *>(control);
            if (control->focusPolicy() == Qt::NoFocus || !control->isVisible() || !control->isEnabled() ||
                (button && button == cancel))
                continue;
            pressed = nullptr;
            control->setFocus();
            QTest::keyClick(sheet->windowHandle(), Qt::Key_Return);
            QCOMPARE(pressed, qobject_cast<QLineEdit *>(control) ? byDefault : button);
        }
        if (cancel) {
            cancel->setFocus();
            QTest::keyClick(sheet->windowHandle(), Qt::Key_Return);
            QVERIFY(!sheet || (!sheet->isBegun() && pressed == cancel));
            QTRY_VERIFY(!shade || !shade->isVisible() || document->wndSignIn()->isVisible());
        }
        QCOMPARE(client.service.requests().size(), sent);
    }
};

QTEST_MAIN(SheetsFlowTest)
#include "SheetsFlowTest.moc"
