#pragma once

#include "BusyIndicator.h"
#include "CurlExchange.h"
#include "DocumentController.h"
#include "LinkOpener.h"
#include "LoopbackService.h"
#include "MessageLine.h"
#include "Samples.h"
#include "ServiceAdapters.h"
#include "ServiceFakes.h"
#include "SignInSheet.h"
#include "SourcedComboBox.h"
#include "TarvexDocument.h"
#include "TarvexView.h"

#include <QAccessible>
#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QPushButton>
#include <QScreen>
#include <QTest>
#include <QTimer>
#include <QUrl>

using namespace Qt::StringLiterals;

/// An answer of the service: records of `fields`, one row of texts for each record.
inline QByteArray xmlAnswer(const QList<QByteArray> &fields, const QList<QList<QByteArray>> &rows)
{
    QByteArray xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?><answer>";
    for (const QList<QByteArray> &row : rows) {
        xml += "<record>";
        for (qsizetype i = 0; i < fields.size(); ++i)
            xml += '<' + fields[i] + '>' + row[i] + "</" + fields[i] + '>';
        xml += "</record>";
    }
    return xml + "</answer>";
}

/// A set whose eight percents are given as "10 20 30 ...".
inline QList<QByteArray> setRow(const QByteArray &id, const QByteArray &name, const QByteArray &percents)
{
    return QList<QByteArray>{id, name} + percents.split(' ');
}

inline QByteArray setsAnswer(const QList<QList<QByteArray>> &rows)
{
    return xmlAnswer({"id", "name", "percent1", "percent2", "percent3", "percent4", "percent5", "percent6",
                      "percent7", "percent8"},
                     rows);
}

inline QByteArray areasAnswer(const QList<QByteArray> &names)
{
    QList<QList<QByteArray>> rows;
    for (qsizetype i = 0; i < names.size(); ++i)
        rows.append({QByteArray::number(i + 1), names[i], "", QByteArray::number(i)});
    return xmlAnswer({"id", "name", "color", "value"}, rows);
}

inline const QList<QByteArray> eightNames = {"Health", "Work", "Money", "Family",
                                             "Growth", "Fun",  "Home",  "Love"};

/// Keeps the addresses that would have been opened.
struct RecordingLinks : LinkOpener
{
    bool openLink(const QUrl &address) override
    {
        opened.append(address.toString());
        return isBrowserThere;
    }

    QStringList opened;
    bool isBrowserThere = true;
};

/// The client as the application assembles it, against a scripted service; alerts are written down, not
/// shown.
class Client
{
public:
    explicit Client(std::chrono::milliseconds beforeSignIn = std::chrono::milliseconds(0))
        : controller(exchange, alert, links, beforeSignIn)
    {
        for (const char *kind : {"sign-in", "delete-sets", "create-sets", "set-sets-name", "set-area-names",
                                 "set-area-value", "create-some-goals", "delete-some-goals"})
            service.answer(kind, QByteArray("OK"));
        service.answer("get-areas", areasAnswer(eightNames));
        service.answer("get-sets", setsAnswer({setRow("7", "First", "10 20 30 40 50 60 70 80"),
                                               setRow("9", "Second", "99 99 99 99 99 99 99 6")}));
    }

    /// A document whose sign-in sheet is up.
    TarvexDocument *open()
    {
        TarvexDocument *document = controller.openUntitledDocument();
        if (!QTest::qWaitFor([&] { return document->wndSignIn()->isVisible(); }))
            qFatal("the sign-in sheet did not come up");
        return document;
    }

    TarvexDocument *openSignedIn()
    {
        TarvexDocument *document = open();
        signIn(document);
        return document;
    }

    /// Types the credentials and clicks the button.
    static void signIn(const TarvexDocument *document, const QString &login = u"ann"_s,
                       const QString &password = u"secret"_s)
    {
        Sheet *sheet = document->wndSignIn();
        sheet->findChild<QLineEdit *>(u"textUsername"_s)->setText(login);
        sheet->findChild<QLineEdit *>(u"textPassword"_s)->setText(password);
        QTest::mouseClick(button(sheet, u"Sign In"_s), Qt::LeftButton);
    }

    /// Lets requests wait from now on until `seen` is true, which is asked again and again meanwhile.
    void holdUntil(const std::function<bool()> &seen)
    {
        service.hold();
        auto *meanwhile = new QTimer(&controller);
        QObject::connect(meanwhile, &QTimer::timeout, meanwhile, [=, this] {
            if (!seen())
                return;
            meanwhile->stop();
            service.release();
        });
        meanwhile->start(/*msec=*/5);
    }

    /// Whether the widget has that colour anywhere.
    static bool shows(QWidget *widget, QRgb color)
    {
        const QImage image = widget->grab().toImage();
        for (int at = 0; at < image.width() * image.height(); ++at)
            if (((image.pixel(at % image.width(), at / image.width()) ^ color) & 0xffffff) == 0)
                return true;
        return false;
    }

    /// The wheel and its labels as the screen has them now, drawn or not.
    static QImage dialOnScreen(const TarvexDocument *document)
    {
        const QWidget *dial = document->wheelView()->parentWidget();
        const QRect place(dial->mapTo(document->window(), QPoint()), dial->size());
        return document->window()->screen()->grabWindow(document->window()->winId()).toImage().copy(place);
    }

    /// How often the wheel was drawn by now. What is due anyway counts if `settled`.
    static qint64 drawn(const TarvexDocument *document, bool settled = false)
    {
        if (settled)
            QCoreApplication::processEvents();
        return document->wheelView()->piecesOfWheel()->front()->copies();
    }

    /// Chooses a command of the menu, whatever is up.
    static void trigger(const TarvexDocument *document, const QByteArray &command)
    {
        document->window()->findChild<QAction *>(QString::fromLatin1(command))->trigger();
    }

    static QPushButton *button(const QWidget *window, const QString &text)
    {
        const auto buttons = window->findChildren<QPushButton *>();
        for (QPushButton *found : buttons)
            if (found->text().remove(u'&') == text)
                return found;
        qFatal("no such button");
    }

    /// The texts of label1 to label8, or with "Percent" of label1Percent to label8Percent.
    static QStringList labels(const TarvexDocument *document, const QString &suffix = QString())
    {
        QStringList texts;
        for (int k = 1; k <= 8; ++k)
            texts += document->window()->findChild<QLabel *>(u"label%1%2"_s.arg(k).arg(suffix))->text();
        return texts;
    }

    static QStringList percents(const TarvexDocument *document) { return labels(document, u"Percent"_s); }

    static QString average(const TarvexDocument *document)
    {
        return document->window()->findChild<QLabel *>(u"labelMainPercent"_s)->text();
    }

    static QString guidance(const TarvexDocument *document)
    {
        return document->window()->findChild<QLabel *>(u"labelGuidance"_s)->text();
    }

    LoopbackService service;
    HeldInputWait wait;
    RecordingAlert alert;
    RecordingLinks links;
    CurlExchange exchange{service.url(), /*deadline=*/std::chrono::seconds(20), wait};
    DocumentController controller;
};

/// A client that works in one of its sheets.
struct SheetClient : Client
{
    QPushButton *button(const char *text) const { return Client::button(sheet, QString::fromLatin1(text)); }
    void click(const char *text) const { QTest::mouseClick(button(text), Qt::LeftButton); }
    /// What was sent since it signed in.
    QList<QByteArray> sent() const { return service.bodies().mid(3); }

    TarvexDocument *document = nullptr;
    Sheet *sheet = nullptr;
};

inline const QByteArray annsDigests =
    "&p2=7E0D7F8A5D96C24FFCC840F31BCE72B2&p3=5EBE2294ECD0E0F08EAB7690D2A6EE69";
