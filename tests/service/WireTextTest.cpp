#include "AnswerText.h"
#include "Escaping.h"
#include "FormString.h"
#include "NSStringMd5.h"
#include "Samples.h"

#include <map>
#include <QLocale>
#include <QRandomGenerator>

using namespace Qt::StringLiterals;

namespace {

const std::map<QByteArray, QString (*)(const QByteArray &)> conversions = {
    {"digest", [](const QByteArray &text) { return MD5(QString::fromUtf8(text)); }},
    {"number", [](const QByteArray &text) { return formNumber(text.toLongLong()); }},
    {"integer", [](const QByteArray &text) { return QString::number(leadingInteger(text.toStdString())); }},
    {"trimmed", [](const QByteArray &text) { return withoutBlanksAround(QString::fromUtf8(text)); }},
    {"escaped", [](const QByteArray &text) { return escapedForWire(QString::fromUtf8(text)); }},
    {"unescaped", [](const QByteArray &text) { return unescapedFromWire(QString::fromUtf8(text)); }},
    {"UTF-8", [](const QByteArray &text) { return utf8Text(text).value_or(u"undecodable"_s); }},
    {"ASCII", [](const QByteArray &text) { return asciiText(text).value_or(u"undecodable"_s); }},
};

/// The escaped characters, each followed by the word of its token.
const QStringList escapes =
    u"? quest ] cbc [ cbo & amp : dp ; dc . d , c ` bq1 > tbc < tbo % prcnt / slr \\ sll ^ v "
    "$ buks @ woof ~ - | l"_s.split(u' ');

// Nineteen replacements one after another: what escaping and unescaping mean.
QString replacedStepByStep(QString text, bool isUnescaping)
{
    for (qsizetype i = 0; i < escapes.size(); i += 2) {
        const QString token = u"{_%1_}"_s.arg(escapes[i + 1]);
        text.replace(isUnescaping ? token : escapes[i], isUnescaping ? escapes[i] : token);
    }
    return text;
}

/// Made of what is likely to be, or to look like, a token.
QString generatedText(QRandomGenerator &random)
{
    static const QStringList pieces =
        escapes + u"{ } _ {_ _} {_d {_} {__} {_AMP_} {_end_} é日😀 \0"_s.split(u' ');
    QString text;
    for (int left = random.bounded(1, 12); left > 0; --left) {
        const QString &piece = pieces[random.bounded(int(pieces.size()))];
        text += random.bounded(2) == 0 ? piece : u"{_%1_}"_s.arg(piece);
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

    void textsAreConverted_data() { addSampleRows("conversions.txt"); }
    void textsAreConverted()
    {
        const auto [conversion, text, expected] = sampleRow<3>();
        QCOMPARE(conversions.at(conversion)(text).toUtf8(), expected);
    }

    void onePassEqualsNineteenReplacements()
    {
        QRandomGenerator random(/*seedValue=*/1);
        for (int i = 0; i < 10'000; ++i) {
            const QString text = u'x' + generatedText(random);
            const QString escaped = escapedForWire(text);
            QCOMPARE(escaped, replacedStepByStep(text, /*isUnescaping=*/false));
            QCOMPARE(escaped.isSharedWith(text), escaped == text);
            const QString unescaped = unescapedFromWire(text);
            QCOMPARE(unescaped, replacedStepByStep(text, /*isUnescaping=*/true));
            QCOMPARE(unescaped.isSharedWith(text), unescaped == text);
            QCOMPARE(unescapedFromUtf8Wire(text.toStdString()), unescaped);
        }
    }
};

QTEST_APPLESS_MAIN(WireTextTest)
#include "WireTextTest.moc"
