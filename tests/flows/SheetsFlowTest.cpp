#include "OpenSheet.h"
#include "WrappedLabel.h"

#include <QDialogButtonBox>

namespace {

/// Knows how many requests the service had got when a text was painted first.
struct Painted : QObject
{
    explicit Painted(const Client &ofClient) : client(ofClient) { qApp->installEventFilter(this); }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        const auto *label = qobject_cast<QLabel *>(watched);
        const auto *wrapped = qobject_cast<WrappedLabel *>(watched->parent());
        const QString text = label ? label->text() : wrapped ? wrapped->text() : QString();
        if (event->type() == QEvent::Paint && !texts.contains(text))
            texts[text] = client.service.requests().size();
        return false;
    }

    QHash<QString, qsizetype> texts;
    const Client &client;
};

} // namespace

/// What every sheet has in common, looked at in each of them.
class SheetsFlowTest : public QObject
{
    Q_OBJECT

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
        const QPointer focusBefore = window->focusWidget();
        const QPointer sheet = openSheet(document, QTest::currentDataTag());
        QTRY_VERIFY(client.service.requests().size() == sent && !client.controller.isBusy());
        QPushButton *pressed = nullptr;
        const QPushButton *const byDefault = defaultButtons(sheet)[0];
        QPushButton *cancel = nullptr;
        const auto *box = sheet->findChild<QDialogButtonBox *>();
        for (QPushButton *button : sheet->findChildren<QPushButton *>()) {
            if (box->buttonRole(button) == QDialogButtonBox::RejectRole && button->isVisible())
                cancel = button;
            else
                disconnect(button, &QPushButton::clicked, nullptr, nullptr);
            connect(button, &QPushButton::clicked, this, [&pressed, button] { pressed = button; });
            QVERIFY(!QStringList({u"OK"_s, u"Yes"_s, u"No"_s}).contains(button->text().remove(u'&')));
        }
        for (QWidget *control : sheet->findChildren<QWidget *>()) {
            auto *button = qobject_cast<QPushButton *>(control);
            if (control->focusPolicy() == Qt::NoFocus || !control->isVisible() || !control->isEnabled() ||
                (button && button == cancel))
                continue;
            pressed = nullptr;
            control->setFocus();
            QCOMPARE(defaultButtons(sheet).size(), 1);
            QTest::keyClick(sheet->windowHandle(), Qt::Key_Return);
            QCOMPARE(pressed, qobject_cast<QLineEdit *>(control) ? byDefault : button);
        }
        if (cancel) {
            cancel->setFocus();
            QTest::keyClick(sheet->windowHandle(), Qt::Key_Return);
            QVERIFY(!sheet || (!sheet->isBegun() && pressed == cancel));
            QTRY_VERIFY(!window || window->focusWidget() == focusBefore);
        }
        QCOMPARE(client.service.requests().size(), sent);
    }

    void whatIsBeingDoneIsSeenBeforeTheRequestLeaves()
    {
        Client client;
        client.service.answer("get-goals", QByteArray("<answer/>"));
        const Painted painted(client);
        TarvexDocument *document = client.openSignedIn();
        QCOMPARE(painted.texts.value(u"Checking..."_s, -1), 0);
        openSheet(document, "area");
        QTest::keyClick(document->wndAreaDetails(), Qt::Key_Escape);
        QCOMPARE(painted.texts.value(u"Please Wait..."_s, -1), 3);
        Client::trigger(document, "actionRandomGoal");
        QTRY_COMPARE(client.service.requests().size(), 5);
        QCOMPARE(painted.texts.value(u"Please wait..."_s, -1), 4);
    }
};

QTEST_MAIN(SheetsFlowTest)
#include "SheetsFlowTest.moc"
