#include "AnswerText.h"
#include "Columns.h"
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

/// The columns "id" and "name", "[1,2] [a,b]"; "refused" if there is none.
QByteArray read(const QByteArray &xml)
{
    static constexpr std::string_view names[] = {"id", "name"};
    const std::optional<Columns> columns = Columns::read(xml, names);
    if (!columns)
        return "refused";
    QByteArrayList lists;
    for (const std::size_t column : {std::size_t(0), std::size_t(1)}) {
        QByteArrayList texts;
        for (std::size_t i = 0; i < columns->count(column); ++i)
            texts.append(QByteArray::fromStdString(std::string(columns->text(column, i))));
        lists.append('[' + texts.join(',') + ']');
    }
    return lists.join(' ');
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

    void documentsBecomeColumns_data() { addSampleRows("documents.txt"); }
    void documentsBecomeColumns()
    {
        const auto [xml, columns] = sampleRow<2>();
        QCOMPARE(read(xml), columns);
    }

    void hostileDocumentsEndSoon_data() { addSampleRows("hostile-documents.txt"); }
    void hostileDocumentsEndSoon()
    {
        const auto [xml, verdict] = sampleRow<2>();
        QCOMPARE(read(xml) == "refused", verdict == "refused"); // long before the whole test's time is up
    }
};

QTEST_APPLESS_MAIN(WireTextTest)
#include "WireTextTest.moc"
