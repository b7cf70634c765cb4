#include "Client.h"

class UntrustedTextFlowTest : public QObject
{
    Q_OBJECT

    const QStringList untrusted = {u"<b>bold</b><img src=x>"_s,
                                   u"R&D &amp; &lt;"_s,
                                   u"two\nlines\tand"_s,
                                   u"\u05E2\u05D1\u05E8\u05D9\u05EA"_s,
                                   u"\U0001F3AF goal"_s,
                                   QString(500, u'W'),
                                   u"  blanks  "_s,
                                   QString(200'000, u'x')};

private Q_SLOTS:
    void namesStayWhatTheyAreAndTheLayoutStands()
    {
        Client client;
        QList<QByteArray> names;
        for (int index = 0; index < 8; ++index)
            names += untrusted[index].toHtmlEscaped().toUtf8();
        client.service.answer("get-areas", areasAnswer(names));
        client.service.answer("get-sets", setsAnswer({setRow("1", names[5], names[7] + " <b/> 3 4 5 6 7 8"),
                                                      setRow("2", names[2], "1 2 3 4 5 6 7 8")}));
        const TarvexDocument *document = client.open();
        const QSize before = document->window()->size();
        const QSize least = document->window()->minimumSizeHint();
        Client::signIn(document);

        for (int index = 0; index < 8; ++index)
            QCOMPARE(Client::labels(document)[index], untrusted[index]);
        QCOMPARE(document->listOfProjects()->itemText(0), untrusted[5]);
        for (const int role : {Qt::DisplayRole, Qt::EditRole}) // which macOS's own list asks for
            QCOMPARE(document->listOfProjects()->itemData(1, role).toString(), u"two lines and"_s);
        QVERIFY(document->listOfProjects()->itemData(1, Qt::ToolTipRole).toString().contains(untrusted[2]));
        QCoreApplication::processEvents();
        QCOMPARE(document->window()->size(), before);
        QCOMPARE(document->window()->minimumSizeHint().expandedTo(least), least);
        QStringList percents;
        for (QWidget *widget : document->window()->findChildren<QWidget *>()) {
            const QAccessibleInterface *told = QAccessible::queryAccessibleInterface(widget);
            QVERIFY(!told->text(QAccessible::Description).contains(u"</"_s));
            if (qobject_cast<RotatedLabel *>(widget) && !told->state().focusable)
                percents += told->text(QAccessible::Name);
        }
        QCOMPARE(percents, Client::percents(document));
        const auto labels = document->window()->findChildren<QLabel *>();
        for (const QLabel *label : labels)
            if (!label->buddy() && label->pixmap().isNull()) // not fixed texts with a mnemonic, not icons
                QVERIFY2(label->textFormat() == Qt::PlainText, qPrintable(label->objectName()));
    }
};

QTEST_MAIN(UntrustedTextFlowTest)
#include "UntrustedTextFlowTest.moc"
