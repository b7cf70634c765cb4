#include "DialArea.h"
#include "OpenSheet.h"
#include "RotatedLabel.h"
#include "SliceMark.h"

#include <cmath>
#include <QHeaderView>
#include <QSlider>
#include <QTableView>
#include <QTranslator>

namespace {

/// Every text that can be translated, between brackets and longer by two fifths.
struct LongTexts : QTranslator
{
    bool isEmpty() const override { return false; }
    QString translate(const char *, const char *text, const char *, int) const override
    {
        const QString given = QString::fromUtf8(text);
        static const QRegularExpression keys(u"^(Ctrl\\+.*|F\\d+)$"_s);
        if (keys.match(given).hasMatch())
            return {};
        const qsizetype more = given.size() * 2 / 5;
        return u'[' + given + u" longer"_s.repeated(more / 7 + 1).left(more) + u']';
    }
};

/// What is complained of, by name.
QString nameOf(const QWidget *widget)
{
    const QString name = widget->objectName();
    return name.isEmpty() ? QString::fromLatin1(widget->metaObject()->className()) : name;
}

QList<QWidget *> shownIn(const QWidget *window)
{
    QList<QWidget *> widgets = window->findChildren<QWidget *>();
    widgets.removeIf(
        [&](const QWidget *widget) { return !widget->isVisible() || widget->window() != window; });
    return widgets;
}

template<typename Kind>
const Kind *as(const QObject *object)
{
    return qobject_cast<const Kind *>(object);
}

bool isWhole(const QWidget *widget)
{
    const auto *header = as<QHeaderView>(widget);
    for (int section = 0; header && section < header->count(); ++section)
        if (header->sectionSizeHint(section) > header->sectionSize(section))
            return false;
    const auto *label = as<QLabel>(widget);
    QSize needed = as<DialArea>(widget) ? widget->minimumSizeHint() : QSize(0, 0);
    if (as<QAbstractButton>(widget) || (label && !as<RotatedLabel>(label)))
        needed = widget->sizeHint();
    if (label && label->wordWrap())
        needed = {label->minimumSizeHint().width(), label->heightForWidth(label->width())};
    const bool hidesMore = widget->objectName().endsWith(u"_ext_button"_s); // what a bar has no room for
    return !hidesMore && needed.boundedTo(widget->size()) == needed;
}

/// Of what differs most from the ground of a picture, which is what it has most of.
qreal contrast(const QImage &picture)
{
    std::array<int, 256> counts{};
    for (int at = 0; at < picture.width() * picture.height(); ++at)
        ++counts.at(
            static_cast<std::size_t>(qGray(picture.pixel(at % picture.width(), at / picture.width()))));
    const auto light = [&](auto gray) {
        return 0.05 + std::pow(static_cast<qreal>(gray - counts.begin()) / 255, 2.2);
    };
    const auto isThere = [](int count) { return count > 0; };
    const auto ground = std::max_element(counts.begin(), counts.end());
    const auto darkest = std::find_if(counts.begin(), counts.end(), isThere);
    const auto lightest = std::find_if(counts.rbegin(), counts.rend(), isThere).base() - 1;
    return std::max(light(ground) / light(darkest), light(lightest) / light(ground));
}

/// What is too pale to read or to make out, by the pixels on the screen.
QStringList paleIn(QWidget *window)
{
    const QImage screen = window->screen()->grabWindow(window->winId()).toImage();
    const qreal ratio = window->devicePixelRatio();
    QStringList pale;
    const auto look = [&](const QWidget *widget, const QRect &part, qreal least) {
        const QRectF place(widget->mapTo(window, part.topLeft()), part.size());
        const QRect pixels = QRectF(place.topLeft() * ratio, place.size() * ratio).toRect();
        if (!screen.rect().contains(pixels))
            return; // scaled, this platform's screen has the window's upper left part alone
        const qreal seen = contrast(screen.copy(pixels));
        if (seen < least)
            pale += u"%1 %2"_s.arg(nameOf(widget)).arg(seen);
    };
    constexpr qreal readable = 4.5;
    constexpr qreal discernible = 3;
    for (const QWidget *widget : shownIn(window)) {
        const auto *label = as<QLabel>(widget);
        const auto *button = as<QAbstractButton>(widget);
        if (as<SliceMark>(widget))
            look(widget, widget->rect(), discernible);
        else if (widget->isEnabled() &&
                 ((label && !label->text().isEmpty()) || (button && !button->text().isEmpty())))
            look(widget, label ? label->rect() : button->rect().adjusted(4, 4, -4, -4), readable);
        const auto *table = as<QTableView>(widget);
        for (int row = 0; table && row < table->model()->rowCount(); ++row)
            for (int column = 0; column < 3 && !table->selectionModel()->isRowSelected(row); ++column)
                look(table->viewport(), table->visualRect(table->model()->index(row, column)),
                     column == 0 ? discernible : readable);
    }
    return pale;
}

/// What the Tab key does not reach once a round, or not in the order of reading.
QStringList outOfTurnIn(const QWidget *window)
{
    QStringList missed;
    QList<QWidget *> reached;
    for (QWidget *at = window->focusWidget(); at && !reached.contains(at); at = window->focusWidget()) {
        reached += at;
        QTest::keyClick(window->windowHandle(), Qt::Key_Tab);
    }
    for (const QWidget *widget : shownIn(window))
        if (widget->focusPolicy() & Qt::TabFocus && widget->isEnabled() && !reached.contains(widget))
            missed += nameOf(widget);
    const auto precedes = [&](const QWidget *a, const QWidget *b) {
        const QRect first(a->mapTo(window, QPoint()), a->size());
        const QRect second(b->mapTo(window, QPoint()), b->size());
        if (first.bottom() < second.center().y() || second.bottom() < first.center().y())
            return first.bottom() < second.center().y();
        return window->isRightToLeft() ? first.left() > second.left() : first.left() < second.left();
    };
    if (reached.isEmpty())
        return {u"nothing has the focus"_s};
    std::rotate(reached.begin(), std::min_element(reached.begin(), reached.end(), precedes), reached.end());
    for (qsizetype k = 1; k < reached.size(); ++k)
        if (!precedes(reached[k - 1], reached[k]))
            missed += nameOf(reached[k - 1]) + u" before "_s + nameOf(reached[k]);
    return missed;
}

/// Fields without a label on the side where reading begins, and letters or names that two of a window have.
QStringList unnamedIn(const QWidget *window)
{
    QStringList faults;
    QStringList names;
    QStringList letters;
    const auto take = [&](QStringList &taken, const QString &text) {
        if (text.isEmpty() || taken.contains(text))
            faults += u"twice or not at all: "_s + text;
        taken += text;
    };
    const QList<QWidget *> shown = shownIn(window);
    QList<QWidget *> labelled;
    for (const QWidget *widget : shown) {
        const auto *label = as<QLabel>(widget);
        const auto *button = as<QAbstractButton>(widget);
        if (widget->focusPolicy() & Qt::TabFocus)
            take(names, button ? button->text() : widget->accessibleName());
        const QString text = button ? button->text() : label && label->buddy() ? label->text() : QString();
        if (text.contains(u'&'))
            take(letters, QKeySequence::mnemonic(text).toString());
        if (label && label->buddy() && window->isRightToLeft() != (label->x() < label->buddy()->x()))
            labelled += label->buddy();
    }
    for (QWidget *widget : shown)
        if ((as<QLineEdit>(widget) || as<QSlider>(widget) || as<QComboBox>(widget)) &&
            !labelled.contains(widget))
            faults += nameOf(widget);
    return faults;
}

/// Texts that neither are translated nor come from outside or are fixed.
QStringList untranslatedIn(const QWidget *window)
{
    static const QRegularExpression given(
        u"^\\[|^\\P{L}*$|^(ann|First|Second|Run|Sing|Tarvex Cloud.*|Normal|Hight|New Goal"
        "|0 - Very Bad|Very Bad|Checking\\.\\.\\.|Delete\\??|Cancel|Please.*)$"_s,
        QRegularExpression::UseUnicodePropertiesOption);
    QStringList texts = {window->windowTitle()};
    for (const QObject *object : window->findChildren<QObject *>())
        for (const char *text : {"text", "iconText", "toolTip", "accessibleName", "accessibleDescription"})
            texts += object->property(text).toString();
    texts.removeIf([](const QString &text) {
        return given.match(text).hasMatch() || eightNames.contains(text.toUtf8());
    });
    return texts;
}

} // namespace

/// Each sheet and the window, in every look that a desktop may give them.
class LooksFlowTest : public QObject
{
    Q_OBJECT

    LongTexts m_longTexts;
    const QFont m_font = QApplication::font();
    const QPalette m_palette = QApplication::palette();

    static void check(QWidget *window, const QByteArray &look)
    {
        QVERIFY(QTest::qWaitForWindowActive(window));
        QCoreApplication::processEvents();
        QStringList faults = paleIn(window) + unnamedIn(window) + outOfTurnIn(window);
        for (const QWidget *widget : shownIn(window))
            if (!isWhole(widget))
                faults += u"cut: "_s + nameOf(widget);
        if (look == "longer" && window->windowTitle() != u"Delete?"_s) // which is fixed
            faults += untranslatedIn(window);
        QCOMPARE(faults.join(u'\n'), QString());
        const bool mayBeLarger = look == "200" && as<QMainWindow>(window);
        QVERIFY(mayBeLarger || window->screen()->availableGeometry().contains(window->frameGeometry()));
    }

private Q_SLOTS:
    void everyScreenIsSound_data()
    {
        QTest::addColumn<QByteArray>("look");
        QTest::addColumn<SampleRow>("row");
        for (const char *look : {"plain", "longer", "150", "200", "mirrored", "dark"})
            for (const SampleRow &row : sampleRows("sheets.txt"))
                if (QByteArray(look) == "plain" || qApp->devicePixelRatio() == 1)
                    QTest::newRow((row.front() + ", " + look).c_str()) << QByteArray(look) << row;
    }
    void everyScreenIsSound()
    {
        QFETCH(QByteArray, look);
        const auto [requests] = sampleRow<1>();
        const QByteArray command = QByteArray(QTest::currentDataTag()).split(',').first();
        QFont font = m_font;
        if (look.toInt() > 0)
            font.setPointSizeF(font.pointSizeF() * look.toInt() / 100);
        QApplication::setFont(font);
        if (look == "longer")
            QCoreApplication::installTranslator(&m_longTexts);
        QApplication::setLayoutDirection(look == "mirrored" ? Qt::RightToLeft : Qt::LeftToRight);
        if (look == "dark")
            QApplication::setPalette(QPalette(/*button=*/QColor(52, 52, 56), /*window=*/QColor(36, 36, 38)));

        Client client;
        client.service.answer("get-goals", xmlAnswer({"id", "name", "priority", "checked"},
                                                     {{"1", "Run", "9", "y"}, {"2", "Sing", "5", "n"}}));
        client.service.answer("get-random-goal", xmlAnswer({"id", "name", "area"}, {{"1", "Sing", "1"}}));
        TarvexDocument *document = client.open();
        if (requests != "0") {
            document->textUsername()->setText(u"ann"_s);
            QMetaObject::invokeMethod(document, "signIn"); // whatever its button is called
        }
        if (command == "actionNewSet") // once
            check(document->window(), look);
        Sheet *sheet = openSheet(document, command);
        QTRY_VERIFY(client.service.requests().size() == requests.toInt() && !client.controller.isBusy());
        check(sheet, look);
    }

    void cleanup()
    {
        QCoreApplication::removeTranslator(&m_longTexts);
        QApplication::setLayoutDirection(Qt::LeftToRight);
        QApplication::setFont(m_font);
        QApplication::setPalette(m_palette);
    }

    void theDialIsNotMirrored()
    {
        QList<QImage> dials;
        for (const Qt::LayoutDirection direction : {Qt::LeftToRight, Qt::RightToLeft}) {
            QApplication::setLayoutDirection(direction);
            Client client;
            const TarvexDocument *document = client.openSignedIn();
            QCoreApplication::processEvents();
            dials += Client::dialOnScreen(document);
        }
        QVERIFY(dials[0] == dials[1]);
    }
};

QTEST_MAIN(LooksFlowTest)
#include "LooksFlowTest.moc"
