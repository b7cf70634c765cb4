#include "Columns.h"

#include <QElapsedTimer>
#include <QTest>

namespace {

/// The columns "id" and "name" as one line, "1,2 a,b"; "refused" if there is none.
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
        lists.append(texts.join(','));
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
    void documentsBecomeColumns_data();
    void documentsBecomeColumns();
    void hostileDocumentsEndSoon_data();
    void hostileDocumentsEndSoon();
    void readingPastTheEndOfAColumnThrows();
};

void ColumnsTest::documentsBecomeColumns_data()
{
    QTest::addColumn<QByteArray>("xml");
    QTest::addColumn<QByteArray>("columns");
    const auto row = [](const char *name, const char *xml, const char *columns) {
        QTest::newRow(name) << QByteArray(xml) << QByteArray(columns);
    };
    row("records", "<s><g><id>1</id><name>a</name></g><g><id>2</id><name>b</name></g></s>", "1,2 a,b");
    row("any order and depth", "<s><name>a</name><x><y><id>1</id></y></x><name>b</name></s>", "1 a,b");
    row("the root counts", "<id>7</id>", "7 ");
    row("nested in another column", "<s><id>1<name>a</name>2</id></s>", "1a2 a");
    row("nested in its own column", "<s><name>a<name>b</name>c</name></s>", " abc,b");
    row("text of descendants", "<s><name>a<b>c<i>d</i></b>e</name></s>", " acde");
    row("empty elements", "<s><id/><id>1</id><name></name><name>a</name></s>", ",1 ,a");
    row("other names", "<s xmlns:x='u'><ID>1</ID><x:id>2</x:id><idx>3</idx><i>4</i></s>", " ");
    row("unbound prefix", "<s><x:y/><id>1</id></s>", "1 ");
    row("default namespace", "<s xmlns='u'><id>1</id></s>", "1 ");
    row("references and sections", "<name>a&amp;&#233;<![CDATA[<c>]]><!-- no --><?no no?>d</name>",
        " a&é<c>d");
    row("blanks and line ends", "<name> a\r\nb\rc </name>", "  a\nb\nc ");
    row("byte order mark", "\xef\xbb\xbf<id>1</id>", "1 ");
    row("declared Latin-1", "<?xml version='1.0' encoding='ISO-8859-1'?><name>caf\xe9</name>", " café");
    row("document type without entities", "<!DOCTYPE s SYSTEM 'no' [<!ELEMENT s ANY>]><id>1</id>", "1 ");
    row("empty", "", "refused");
    row("plain text", "Error\n", "refused");
    row("cut", "<s><id>1</id>", "refused");
    row("cut inside a tag", "<s><id>1</id></s", "refused");
    row("two roots", "<id>1</id><id>2</id>", "refused");
    row("text behind the root", "<id>1</id>x", "refused");
    row("crossed tags", "<s><id>1</s></id>", "refused");
    row("bare ampersand", "<name>a & b</name>", "refused");
    row("undefined entity", "<name>&nbsp;</name>", "refused");
    row("invalid UTF-8", "<name>caf\xe9</name>", "refused");
    row("unknown encoding", "<?xml version='1.0' encoding='x-none'?><id>1</id>", "refused");
    row("entity declared", "<!DOCTYPE s [<!ENTITY e 'x'>]><name>a</name>", "refused");
    row("external entity", "<!DOCTYPE s [<!ENTITY e SYSTEM 'file:///etc/hostname'>]><id>&e;</id>", "refused");
    row("parameter entity", "<!DOCTYPE s [<!ENTITY % e SYSTEM 'file:///etc/hostname'> %e;]><id/>", "refused");
}

void ColumnsTest::documentsBecomeColumns()
{
    QFETCH(QByteArray, xml);
    QTEST(read(xml), "columns");
}

void ColumnsTest::hostileDocumentsEndSoon_data()
{
    QTest::addColumn<QByteArray>("xml");
    QTest::addColumn<bool>("isRead");
    QByteArray bomb = "<!DOCTYPE a [<!ENTITY e0 \"lol\">";
    QByteArray defaults = "<!DOCTYPE a [";
    for (int i = 1; i < 20'000; ++i)
        defaults += "<!ATTLIST a a" + QByteArray::number(i) + " CDATA 'x'>";
    for (int i = 1; i < 10; ++i) {
        const QByteArray inner = "&e" + QByteArray::number(i - 1) + ";";
        bomb += "<!ENTITY e" + QByteArray::number(i) + " \"" + inner.repeated(10) + "\">";
    }
    QTest::newRow("entities that multiply") << bomb + "]><name>&e9;</name>" << false;
    QTest::newRow("defaults for every element") << defaults + "]>" + nested("a", 200'000, "") << false;
    QTest::newRow("text multiplied by nesting") << nested("name", 2000, QByteArray(20'000, 'x')) << false;
    QTest::newRow("200,000 levels") << nested("x", 200'000, "<id>1</id>") << true;
    QTest::newRow("200,000 levels of a column") << nested("id", 200'000, "") << true;
    QTest::newRow("a tag of 20 MB") << "<id a='" + QByteArray(20'000'000, 'x') + "'/>" << true;
    QTest::newRow("20 MB of records")
        << nested("s", 1, QByteArray("<id>1</id><name/>").repeated(1'200'000)) << true;
}

void ColumnsTest::hostileDocumentsEndSoon()
{
    QFETCH(QByteArray, xml);
    QFETCH(bool, isRead);
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(read(xml) != "refused", isRead);
    QVERIFY(timer.elapsed() < 10'000);
}

void ColumnsTest::readingPastTheEndOfAColumnThrows()
{
    static constexpr std::string_view names[] = {"id"};
    const auto columns = Columns::read("<id>1</id>", names);
    QVERIFY(columns);
    QVERIFY_THROWS_EXCEPTION(std::out_of_range, (void)columns->text(/*column=*/0, /*index=*/1));
}

QTEST_APPLESS_MAIN(ColumnsTest)
#include "ColumnsTest.moc"
