#include "AnswerText.h"
#include "Escaping.h"
#include "FormString.h"
#include "NSStringMd5.h"

#include <QLocale>
#include <QRandomGenerator>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/// The escaped characters, each followed by the word of its token.
const QStringList escapes =
    u"? quest ] cbc [ cbo & amp : dp ; dc . d , c ` bq1 > tbc < tbo % prcnt / slr \\ sll ^ v "
    "$ buks @ woof ~ - | l"_s.split(u' ');

QString token(qsizetype i)
{
    return u"{_%1_}"_s.arg(escapes[i + 1]);
}

// Nineteen replacements one after another: what escaping and unescaping mean.
QString escapedStepByStep(QString text)
{
    for (qsizetype i = 0; i < escapes.size(); i += 2)
        text.replace(escapes[i], token(i));
    return text;
}

QString unescapedStepByStep(QString text)
{
    for (qsizetype i = 0; i < escapes.size(); i += 2)
        text.replace(token(i), escapes[i]);
    return text;
}

/// Made of what is likely to be, or to look like, a token.
QString generatedText(QRandomGenerator &random)
{
    static const QStringList odd = {u"{"_s,       u"}"_s,       u"_"_s,    u"{_"_s,  u"_}"_s,
                                    u"{_d"_s,     u"{_}"_s,     u"{__}"_s, u"amp"_s, u"{_AMP_}"_s,
                                    u"{_end_}"_s, u"{_dpp_}"_s, u"é日😀"_s, u" \n"_s, QString(QChar(0))};
    QString text;
    for (int left = random.bounded(1, 12); left > 0; --left) {
        const int i = 2 * random.bounded(int(escapes.size() / 2));
        const int choice = random.bounded(3);
        text += choice == 0 ? escapes[i] : choice == 1 ? token(i) : odd[random.bounded(int(odd.size()))];
    }
    return text;
}

} // namespace

/// Runs under a locale whose digits, grouping and upper case are not those of the wire.
class WireTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::Turkish, QLocale::Turkey)); }
    void textsAreConvertedLikeThis_data();
    void textsAreConvertedLikeThis();
    void onePassEqualsNineteenReplacements();
    void textWithNothingToReplaceIsTheSameString();
    void formsAreTheirFieldsInOrder();
    void undecodableAnswersAreNoText();
};

void WireTextTest::textsAreConvertedLikeThis_data()
{
    QTest::addColumn<QString>("result");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, const QString &result, const QString &expected) {
        QTest::newRow(name) << result << expected;
    };
    const auto integer = [](const char *text, const QString &expected) {
        QTest::addRow("integer of '%s'", text) << QString::number(leadingInteger(text)) << expected;
    };
    row("digest of nothing", MD5(u""_s), u"D41D8CD98F00B204E9800998ECF8427E"_s);
    row("digest", MD5(u"abc"_s), u"900150983CD24FB0D6963F7D28E17F72"_s);
    row("digest of UTF-8", MD5(u"é"_s), u"66DDCD97CFDEABB2F6FB8A999B4BC76F"_s);
    row("digest up to a zero", MD5(u"abc"_s + QChar(0) + u'd'), u"900150983CD24FB0D6963F7D28E17F72"_s);
    row("number without groups", formNumber(1'234'567), u"1234567"_s);
    row("number beyond 31 bits", formNumber(2'147'483'648), u"-2147483648"_s);
    row("number beyond 32 bits", formNumber((qint64(1) << 32) + 5), u"5"_s);
    integer("42", u"42"_s);
    integer(" \t\r\n42", u"42"_s);
    integer("+7", u"7"_s);
    integer("-7x", u"-7"_s);
    integer("", u"0"_s);
    integer("- 5", u"0"_s);
    integer("+-5", u"0"_s);
    integer("1.234", u"1"_s);
    integer("٣", u"0"_s);
    integer("2147483648", u"2147483647"_s);
    integer("-2147483649", u"-2147483648"_s);
    integer("18446744073709551616", u"2147483647"_s);
    row("blanks around", withoutBlanksAround(u"\u3000\t\u2003 a b\u00a0\u202f\u1680"_s), u"a b"_s);
    row("line break behind", withoutBlanksAround(u" OK\r\n "_s), u"OK\r\n"_s);
    row("other separators", withoutBlanksAround(u"\u2028OK\u0085\v\u200b"_s), u"\u2028OK\u0085\v\u200b"_s);
    row("only blanks", withoutBlanksAround(u" \t "_s), u""_s);
    row("query", escapedForWire(u"a&b?c"_s), u"a{_amp_}b{_quest_}c"_s);
    row("numbers", escapedForWire(u"50% of 1.5/2"_s), u"50{_prcnt_} of 1{_d_}5{_slr_}2"_s);
    row("typed token", unescapedFromWire(escapedForWire(u"{_dp_}"_s)), u":"_s);
    row("token in braces", unescapedFromWire(u"{{_d_}}"_s), u"{.}"_s);
}

void WireTextTest::textsAreConvertedLikeThis()
{
    QFETCH(QString, result);
    QTEST(result, "expected");
}

void WireTextTest::onePassEqualsNineteenReplacements()
{
    QRandomGenerator random(/*seedValue=*/1);
    for (int i = 0; i < 10'000; ++i) {
        const QString text = u'x' + generatedText(random);
        QCOMPARE(escapedForWire(text), escapedStepByStep(text));
        QCOMPARE(unescapedFromWire(text), unescapedStepByStep(text));
        QCOMPARE(unescapedFromUtf8Wire(text.toStdString()), unescapedStepByStep(text));
    }
}

void WireTextTest::textWithNothingToReplaceIsTheSameString()
{
    const QString plain = u"Run 5 km {_often_}"_s.repeated(3);

    QCOMPARE(escapedForWire(plain).constData(), plain.constData());
    QCOMPARE(unescapedFromWire(plain).constData(), plain.constData());
    QVERIFY(!unescapedFromUtf8Wire("").isNull());
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

void WireTextTest::undecodableAnswersAreNoText()
{
    QCOMPARE(utf8Text("é日😀\n"), u"é日😀\n"_s);
    QCOMPARE(asciiText("OK\n\x7f"), u"OK\n\x7f"_s);
    QCOMPARE(asciiText("é"), std::nullopt);
    for (const char *broken : {"a\xc3", "caf\xe9 noir", "\xc0\xaf", "\xed\xa0\x80"})
        QCOMPARE(utf8Text(broken), std::nullopt);
}

QTEST_APPLESS_MAIN(WireTextTest)
#include "WireTextTest.moc"
