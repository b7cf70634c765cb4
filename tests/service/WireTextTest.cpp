#include "AnswerText.h"
#include "Escaping.h"
#include "FormString.h"
#include "NSStringMd5.h"
#include "Samples.h"

#include <map>
#include <QLocale>

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
};

QTEST_APPLESS_MAIN(WireTextTest)
#include "WireTextTest.moc"
