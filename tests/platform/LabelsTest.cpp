#include "BusyIndicator.h"
#include "ElidedLabel.h"
#include "ErrorBox.h"
#include "MessageLine.h"
#include "OneLineEdit.h"
#include "QuietLabel.h"
#include "RotatedLabel.h"
#include "Sheet.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMainWindow>
#include <QMessageBox>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;

class LabelsTest : public QObject
{
    Q_OBJECT

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

    void linesBeginWhereTheLayoutBegins()
    {
        QMainWindow window;
        Sheet sheet(&window);
        sheet.setLayoutDirection(Qt::RightToLeft);
        sheet.resize(300, 60);
        for (QWidget *label : std::initializer_list<QWidget *>{
                 new QLabel(u"One."_s, &sheet), new QuietLabel(&sheet), new MessageLine(&sheet)}) {
            label->setProperty("text", u"One."_s);
            if (auto *line = qobject_cast<MessageLine *>(label))
                line->setError(u"One."_s);
            label->resize(300, 60);
        }
        sheet.beginOn(nullptr);
        for (QWidget *label : sheet.findChildren<QWidget *>(Qt::FindDirectChildrenOnly)) {
            const QImage image = label->grab().toImage();
            const QRect half(0, 0, image.width() / 2, image.height());
            QImage bare = image.copy(half);
            bare.fill(image.pixelColor(half.bottomRight()));
            QVERIFY(image.copy(half) == bare && image.copy(half.translated(half.width(), 0)) != bare);
        }
    }

    void whatShowsAnErrorOrAWaitIsSeen()
    {
        QTimer::singleShot(0, this, [] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            QCOMPARE(box->textFormat(), Qt::PlainText);
            QCOMPARE(box->buttons().first()->text(), u"Close"_s);
            box->accept();
        });
        showErrorBox(u"<b>No</b>"_s);
        BusyIndicator indicator;
        indicator.resize(40, 40);
        indicator.startAnimation();
        const QImage first = indicator.grab().toImage();
        QTRY_VERIFY(indicator.grab().toImage() != first);
        QVERIFY(quietShadeOf(Qt::black).alphaF() > 0.5);
    }

    void aMnemonicOfWhatIsOffIsNoText()
    {
        OneLineEdit field;
        QTest::keyClick(&field, Qt::Key_S, Qt::AltModifier);
        QTest::keyClick(&field, Qt::Key_T);
        QCOMPARE(field.text(), u"t"_s);
    }

    void aLabelTurnsAboutTheCentreItIsGiven()
    {
        QWidget parent;
        parent.resize(300, 200);
        RotatedLabel label(&parent);
        for (const qreal degrees : {0.0, -22.5, -115.0, 150.5, 90.0}) {
            label.setFrameRotation(degrees);
            label.setFrameCentredAt(QPointF(100, 50), QSizeF(80, 20), parent.height());
            QVERIFY(QLineF(label.geometry().toRectF().center(), QPointF(100, 150)).length() < 1.5);
        }
    }
};

QTEST_MAIN(LabelsTest)
#include "LabelsTest.moc"
