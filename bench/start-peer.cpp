// A bare window with the same libraries, a wheel and the same number of controls of the same kinds.
#include "FirstFrame.h"

#include <array>
#include <curl/curl.h>
#include <expat.h>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenuBar>
#include <QPainter>
#include <QPainterPath>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QToolBar>
#include <QVBoxLayout>

namespace {

class Wheel : public QWidget
{
public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.drawEllipse(rect().adjusted(5, 5, -5, -5));
    }
};

class TurnedLabel : public QLabel
{
public:
    using QLabel::QLabel;

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.rotate(30);
        painter.drawText(rect(), Qt::AlignCenter, text());
    }
};

void fill(QMainWindow &window)
{
    QToolBar *bar = window.addToolBar(QStringLiteral("Bar"));
    for (const char *name : {"File", "Set", "Wheel"}) {
        QMenu *menu = window.menuBar()->addMenu(QString::fromLatin1(name));
        for (const char *command : {"One", "Two", "Three"})
            menu->addAction(QString::fromLatin1(command));
        bar->addActions(menu->actions().mid(0, 2));
    }
    bar->addWidget(new QLabel(QStringLiteral("Set")));
    bar->addWidget(new QComboBox);

    auto *central = new QWidget;
    auto *layout = new QVBoxLayout(central);
    auto *dial = new QWidget;
    layout->addWidget(dial, 1);
    layout->addWidget(new QLabel(QStringLiteral("Sign in to see your wheel.")));
    (new Wheel(dial))->setGeometry(200, 60, 430, 430);
    for (int k = 0; k < 8; ++k) {
        (new QLabel(dial))->setGeometry(10, 20 * k, 100, 18);
        (new TurnedLabel(dial))->setGeometry(120, 20 * k, 50, 18);
    }
    for (int k = 0; k < 2; ++k)
        (new QLabel(dial))->setGeometry(10, 300 + 20 * k, 100, 18);
    window.setCentralWidget(central);
}

void fill(QDialog &sheet)
{
    auto *form = new QFormLayout(&sheet);
    form->addRow(new QLabel(QStringLiteral("Sign in")));
    form->addRow(QStringLiteral("Login"), new QLineEdit);
    form->addRow(QStringLiteral("Password"), new QLineEdit);
    form->addRow(new QPlainTextEdit);
    form->addRow(new QWidget);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    form->addRow(buttons);
}

} // namespace

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    CURL *curl = curl_easy_init(); // the libraries are there and in use
    XML_Parser expat = XML_ParserCreate(nullptr);
    QMainWindow window;
    fill(window);
    QDialog sheet(&window);
    fill(sheet);
    QDialog question(&window);
    fill(question);
    std::array<QDialog, 4> emptySheets{QDialog(&window), QDialog(&window), QDialog(&window),
                                       QDialog(&window)};
    window.resize(860, 650);
    window.show();
    const FirstFrame frame(&window);
    const int status = QApplication::exec();
    XML_ParserFree(expat);
    curl_easy_cleanup(curl);
    return status;
}
