#include "Columns.h"
#include "Samples.h"

namespace {

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

QByteArray nested(const QByteArray &element, int depth, const QByteArray &inside)
{
    return QByteArray("<" + element + ">").repeated(depth) + inside +
           QByteArray("</" + element + ">").repeated(depth);
}

} // namespace

class ColumnsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void documentsBecomeColumns_data() { addSampleRows("documents.txt", {"xml", "columns"}); }
    void documentsBecomeColumns()
    {
        QFETCH(QByteArray, xml);
        QTEST(read(xml), "columns");
    }

    void hostileDocumentsEndSoon_data()
    {
        QTest::addColumn<QByteArray>("xml");
        QTest::addColumn<bool>("isRead");
        QByteArray defaults = "<!DOCTYPE a [";
        for (int i = 1; i < 20'000; ++i)
            defaults += "<!ATTLIST a a" + QByteArray::number(i) + " CDATA 'x'>";
        QTest::newRow("entities that multiply") << sampleFile("entity-bomb.xml") << false;
        QTest::newRow("defaults for every element") << defaults + "]>" + nested("a", 200'000, "") << false;
        QTest::newRow("text multiplied by nesting") << nested("name", 2000, QByteArray(20'000, 'x')) << false;
        QTest::newRow("200,000 levels") << nested("x", 200'000, "<id>1</id>") << true;
        QTest::newRow("200,000 levels of a column") << nested("id", 200'000, "") << true;
        QTest::newRow("a tag of 20 MB") << "<id a='" + QByteArray(20'000'000, 'x') + "'/>" << true;
        QTest::newRow("20 MB of records")
            << nested("s", 1, QByteArray("<id>1</id><name/>").repeated(1'200'000)) << true;
    }
    void hostileDocumentsEndSoon()
    {
        QFETCH(QByteArray, xml);
        QTEST(read(xml) != "refused", "isRead"); // long before the whole test's time is up
    }
};

QTEST_APPLESS_MAIN(ColumnsTest)
#include "ColumnsTest.moc"
