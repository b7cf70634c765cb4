#include "BusyIndicator.h"
#include "ElidedLabel.h"
#include "ErrorBox.h"
#include "LinkOpener.h"
#include "OneLineEdit.h"
#include "RotatedLabel.h"
#include "SheetStyle.h"
#include "WrappedLabel.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDesktopServices>
#include <QMessageBox>
#include <QTest>
#include <QTimer>
#include <QUrl>

using namespace Qt::StringLiterals;

class LabelsTest : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void open(const QUrl &address) { m_opened = address; }

private:
    QUrl m_opened;

private Q_SLOTS:
    void textFromOutsideIsOneBoundedLine()
    {
        const QString line = singleLineOf(u"a\nb\tc\u2028d\u0000e"_s + QString(5000, u'x'));
        QVERIFY(line.startsWith(u"a b c d"_s));
        QVERIFY(!line.contains(u'\n'));
        QVERIFY(line.size() <= 1000);
        QVERIFY(plainToolTip(u"<img src=x>&"_s).contains(u"&lt;img src=x&gt;&amp;"_s));
    }

    void pastedLinesBecomeOneAndTextLeftAloneStays()
    {
        OneLineEdit field;
        field.setText(u"left\nalone"_s);
        QCOMPARE(field.text(), u"left\nalone"_s);
        field.insert(u"\r\n\tand more"_s); // as pasting does
        QCOMPARE(field.text(), u"left alone and more"_s);
        QVERIFY(field.isModified());
        field.setCursorPosition(0);
        field.insert(u"\n1\n"_s);
        QCOMPARE(field.cursorPosition(), 3); // behind what was pasted
    }

    void whatShowsAnErrorOrAWaitIsSeen()
    {
        QWidget window;
        window.show();
        QApplication::setActiveWindow(nullptr); // the user works in another program meanwhile
        QTimer whenItIsUp;
        bool waited = false;
        connect(&whenItIsUp, &QTimer::timeout, this, [&] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            QCOMPARE(box->parentWidget(), &window); // not lost in a corner of the screen
            QCOMPARE(box->textFormat(), Qt::PlainText);
            QCOMPARE(box->buttons().first()->text(), u"Close"_s);
            waited = true;
            box->accept();
        });
        whenItIsUp.start(0);
        showErrorBox(u"<b>No</b>"_s);
        whenItIsUp.stop();
        QVERIFY(waited);
        BusyIndicator indicator;
        indicator.resize(40, 40);
        indicator.startAnimation();
        const QImage first = indicator.grab().toImage();
        QTRY_VERIFY(indicator.grab().toImage() != first);
    }

    void aLabelLeansAsItIsTold()
    {
        QWidget parent;
        parent.resize(200, 200);
        RotatedLabel label(&parent);
        label.setText(u"Health"_s);
        label.setFrameRotation(45); // counter-clockwise: its end is up
        label.setFrameCentredAt(QPointF(100, 100), QSizeF(120, 20), parent.height());
        const QImage image = parent.grab().toImage();
        QVERIFY(image.copy(0, 0, 90, 90) != image.copy(100, 0, 90, 90));
        QVERIFY(image.copy(0, 0, 90, 90) == image.copy(110, 110, 90, 90));
    }

    void titlesStandOutAndGoalsAreWhole()
    {
        QLabel title;
        const int size = QFontInfo(title.font()).pixelSize();
        SheetStyle::makeTitle(&title);
        QVERIFY(title.font().pixelSize() > size && title.font().bold());
        WrappedLabel goal;
        goal.setText(QString(2000, u'x') + u"end"_s);
        QVERIFY(goal.toPlainText().endsWith(u"end"_s));
    }

    void linksLeadOutside()
    {
        QDesktopServices::setUrlHandler(u"https"_s, this, "open");
        QVERIFY(BrowserLinkOpener().openLink(QUrl(u"https://www.example.org/"_s)));
        QDesktopServices::unsetUrlHandler(u"https"_s);
        QCOMPARE(m_opened, QUrl(u"https://www.example.org/"_s));
    }
};

QTEST_MAIN(LabelsTest)
#include "LabelsTest.moc"
