#include "AnswerText.h"
#include "FormString.h"
#include "NSStringMd5.h"

#include <limits>
#include <QLocale>
#include <QTest>

using namespace Qt::StringLiterals;

/// Runs under a locale with other digits' grouping, and other upper and lower cases, than the wire has.
class WireTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::Turkish, QLocale::Turkey)); }

    void digestsAreUpperCaseHexadecimal_data();
    void digestsAreUpperCaseHexadecimal();
    void formsAreTheirFieldsInOrder();
    void numbersTravelAsTheirLow32Bits_data();
    void numbersTravelAsTheirLow32Bits();
    void leadingIntegersAreRead_data();
    void leadingIntegersAreRead();
    void blanksAreTrimmedAndLineBreaksAreNot_data();
    void blanksAreTrimmedAndLineBreaksAreNot();
    void answersDecodeOrFail_data();
    void answersDecodeOrFail();
};

void WireTextTest::digestsAreUpperCaseHexadecimal_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("digest");

    QTest::newRow("empty") << u""_s << u"D41D8CD98F00B204E9800998ECF8427E"_s;
    QTest::newRow("abc") << u"abc"_s << u"900150983CD24FB0D6963F7D28E17F72"_s;
    QTest::newRow("UTF-8") << u"é"_s << u"66DDCD97CFDEABB2F6FB8A999B4BC76F"_s;
    QTest::newRow("up to a zero character")
        << u"abc"_s + QChar(0) + u"def"_s << u"900150983CD24FB0D6963F7D28E17F72"_s;
}

void WireTextTest::digestsAreUpperCaseHexadecimal()
{
    QFETCH(QString, text);
    QTEST(MD5(text), "digest");
}

void WireTextTest::formsAreTheirFieldsInOrder()
{
    FormString form("create-goal"_L1);
    form.credentials(u"abc"_s, u""_s).text("p4"_L1, u"é & more"_s).number("p5"_L1, /*value=*/-7);
    form.raw("type"_L1, u"a&b"_s).raw("last"_L1, QString(QChar(0xd83d)));

    QCOMPARE(form.body(), QByteArray("p1=create-goal&p2=900150983CD24FB0D6963F7D28E17F72"
                                     "&p3=D41D8CD98F00B204E9800998ECF8427E&p4=é {_amp_} more&p5=-7"
                                     "&type=a&b&last=?"));
}

void WireTextTest::numbersTravelAsTheirLow32Bits_data()
{
    QTest::addColumn<qint64>("number");
    QTest::addColumn<QString>("text");

    QTest::newRow("ungrouped") << qint64(1'234'567) << u"1234567"_s;
    QTest::newRow("negative") << qint64(-1) << u"-1"_s;
    QTest::newRow("largest") << qint64(2'147'483'647) << u"2147483647"_s;
    QTest::newRow("one more") << qint64(2'147'483'648) << u"-2147483648"_s;
    QTest::newRow("33 bits") << (qint64(1) << 32) + 5 << u"5"_s;
    QTest::newRow("smallest of 64 bits") << std::numeric_limits<qint64>::min() << u"0"_s;
}

void WireTextTest::numbersTravelAsTheirLow32Bits()
{
    QFETCH(qint64, number);
    QTEST(formNumber(number), "text");
}

void WireTextTest::leadingIntegersAreRead_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<qint32>("number");
    constexpr qint32 largest = std::numeric_limits<qint32>::max();
    constexpr qint32 smallest = std::numeric_limits<qint32>::min();

    const auto row = [](const QByteArray &text, qint32 number) {
        QTest::newRow(text.toPercentEncoding().constData()) << text << number;
    };
    row("42", 42);
    row(" \t\r\n42", 42);
    row("+7", 7);
    row("-7x", -7);
    row("12abc34", 12);
    row("", 0);
    row("-", 0);
    row("- 5", 0);
    row("+-5", 0);
    row("x5", 0);
    row("1.234", 1);
    row("1,234", 1);
    row("٣", 0);
    row("0x10", 0);
    row("2147483647", largest);
    row("2147483648", largest);
    row("-2147483648", smallest);
    row("-2147483649", smallest);
    row("99999999999999999999999", largest);
    row("-99999999999999999999999", smallest);
}

void WireTextTest::leadingIntegersAreRead()
{
    QFETCH(QByteArray, text);
    QTEST(leadingInteger({text.constData(), static_cast<std::size_t>(text.size())}), "number");
}

void WireTextTest::blanksAreTrimmedAndLineBreaksAreNot_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("trimmed");

    QTest::newRow("nothing to do") << u"OK"_s << u"OK"_s;
    QTest::newRow("spaces and tabs") << u" \tOK\t "_s << u"OK"_s;
    QTest::newRow("wide and thin spaces") << u"\u3000\u2003\u00a0OK\u202f\u1680"_s << u"OK"_s;
    QTest::newRow("inside") << u" a b "_s << u"a b"_s;
    QTest::newRow("line break at the end") << u"OK\n"_s << u"OK\n"_s;
    QTest::newRow("blank behind a line break") << u" OK\r\n "_s << u"OK\r\n"_s;
    QTest::newRow("other separators") << u"\u2028OK\u0085\v\u200b"_s << u"\u2028OK\u0085\v\u200b"_s;
    QTest::newRow("only blanks") << u" \t "_s << u""_s;
    QTest::newRow("empty") << u""_s << u""_s;
}

void WireTextTest::blanksAreTrimmedAndLineBreaksAreNot()
{
    QFETCH(QString, text);
    QTEST(withoutBlanksAround(text), "trimmed");
}

void WireTextTest::answersDecodeOrFail_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<bool>("isUtf8");
    QTest::addColumn<bool>("isAscii");

    QTest::newRow("empty") << QByteArray("") << true << true;
    QTest::newRow("ASCII") << QByteArray("OK\n\x7f") << true << true;
    QTest::newRow("UTF-8") << QByteArray("é日😀") << true << false;
    QTest::newRow("cut sequence") << QByteArray("a\xc3") << false << false;
    QTest::newRow("Latin-1") << QByteArray("caf\xe9 noir") << false << false;
    QTest::newRow("overlong") << QByteArray("\xc0\xaf") << false << false;
    QTest::newRow("surrogate") << QByteArray("\xed\xa0\x80") << false << false;
}

void WireTextTest::answersDecodeOrFail()
{
    QFETCH(QByteArray, answer);
    QTEST(utf8Text(answer).has_value(), "isUtf8");
    QTEST(asciiText(answer).has_value(), "isAscii");
    if (utf8Text(answer))
        QCOMPARE(utf8Text(answer)->toUtf8(), answer);
}

QTEST_APPLESS_MAIN(WireTextTest)
#include "WireTextTest.moc"
