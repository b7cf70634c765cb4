#include "Columns.h"

#include <QElapsedTimer>
#include <QTest>

namespace {

using Texts = QList<QByteArray>;

/// The columns "id" and "name" as lists of texts; nothing if the document was refused.
std::optional<std::pair<Texts, Texts>> read(const QByteArray &xml)
{
    static constexpr std::string_view names[] = {"id", "name"};
    const std::optional<Columns> columns = Columns::read(xml, names);
    if (!columns)
        return std::nullopt;
    std::array<Texts, 2> texts;
    for (std::size_t column = 0; column < texts.size(); ++column) {
        for (std::size_t i = 0; i < columns->count(column); ++i)
            texts[column].append(QByteArray::fromStdString(std::string(columns->text(column, i))));
    }
    return std::pair(texts[0], texts[1]);
}

QByteArray entityBomb()
{
    QByteArray xml = "<!DOCTYPE a [<!ENTITY e0 \"lol\">";
    for (int i = 1; i < 10; ++i) {
        const QByteArray inner = "&e" + QByteArray::number(i - 1) + ";";
        xml += "<!ENTITY e" + QByteArray::number(i) + " \"" + inner.repeated(10) + "\">";
    }
    return xml + "]><name>&e9;</name>";
}

QByteArray nested(const QByteArray &element, int depth, const QByteArray &text)
{
    return QByteArray("<" + element + ">").repeated(depth) + text +
           QByteArray("</" + element + ">").repeated(depth);
}

} // namespace

class ColumnsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void elementsBecomeColumns_data();
    void elementsBecomeColumns();
    void whatIsNotXmlIsRefused_data();
    void whatIsNotXmlIsRefused();
    void hostileDocumentsEndSoon_data();
    void hostileDocumentsEndSoon();
    void readingPastTheEndOfAColumnThrows();
};

void ColumnsTest::elementsBecomeColumns_data()
{
    QTest::addColumn<QByteArray>("xml");
    QTest::addColumn<Texts>("ids");
    QTest::addColumn<Texts>("names");

    const auto row = [](const char *name, const QByteArray &xml, const Texts &ids, const Texts &names) {
        QTest::newRow(name) << xml << ids << names;
    };
    row("records", "<s><g><id>1</id><name>a</name></g><g><id>2</id><name>b</name></g></s>", {"1", "2"},
        {"a", "b"});
    row("any order and depth", "<s><name>a</name><x><y><id>1</id></y></x><name>b</name></s>", {"1"},
        {"a", "b"});
    row("the root counts", "<id>7</id>", {"7"}, {});
    row("nested in another column", "<s><id>1<name>a</name>2</id></s>", {"1a2"}, {"a"});
    row("nested in its own column", "<s><name>a<name>b</name>c</name></s>", {}, {"abc", "b"});
    row("text of descendants", "<s><name>a<b>c<i>d</i></b>e</name></s>", {}, {"acde"});
    row("empty elements", "<s><id/><name></name></s>", {""}, {""});
    row("nothing wanted", "<s>text<other/></s>", {}, {});
    row("other cases and prefixes", "<s xmlns:x='u'><ID>1</ID><x:id>2</x:id><idx>3</idx><i>4</i></s>", {},
        {});
    row("unbound prefix", "<s><x:y/><id>1</id></s>", {"1"}, {});
    row("default namespace", "<s xmlns='u'><id>1</id></s>", {"1"}, {});
    row("references and sections", "<name>a&amp;b&#233;<![CDATA[<c>]]><!-- no --><?no no?>d</name>", {},
        {"a&bé<c>d"});
    row("line ends are one", "<name>a\r\nb\rc</name>", {}, {"a\nb\nc"});
    row("blanks stay", "<name> a </name>", {}, {" a "});
    row("byte order mark", "\xef\xbb\xbf<id>1</id>", {"1"}, {});
    row("declared Latin-1", "<?xml version='1.0' encoding='ISO-8859-1'?><name>caf\xe9</name>", {}, {"café"});
    row("a document type without entities", "<!DOCTYPE id SYSTEM 'no.dtd' [<!ELEMENT id ANY>]><id>1</id>",
        {"1"}, {});
}

void ColumnsTest::elementsBecomeColumns()
{
    QFETCH(QByteArray, xml);
    QFETCH(Texts, ids);
    QFETCH(Texts, names);
    const auto columns = read(xml);
    QVERIFY(columns);
    QCOMPARE(columns->first, ids);
    QCOMPARE(columns->second, names);
}

void ColumnsTest::whatIsNotXmlIsRefused_data()
{
    QTest::addColumn<QByteArray>("text");

    const auto row = [](const char *name, const QByteArray &text) { QTest::newRow(name) << text; };
    row("empty", "");
    row("plain text", "Error\n");
    row("cut", "<s><id>1</id>");
    row("cut inside a tag", "<s><id>1</id></s");
    row("two roots", "<id>1</id><id>2</id>");
    row("text behind the root", "<id>1</id>x");
    row("crossed tags", "<s><id>1</s></id>");
    row("bare ampersand", "<name>a & b</name>");
    row("undefined entity", "<name>&nbsp;</name>");
    row("invalid UTF-8", "<name>caf\xe9</name>");
    row("control character", "<name>\x01</name>");
    row("unknown encoding", "<?xml version='1.0' encoding='x-none'?><id>1</id>");
    row("blank before the declaration", " <?xml version='1.0'?><id>1</id>");
    row("entity declared", "<!DOCTYPE s [<!ENTITY e 'x'>]><name>a</name>");
    row("external entity", "<!DOCTYPE s [<!ENTITY e SYSTEM 'file:///etc/hostname'>]><name>&e;</name>");
    row("parameter entity", "<!DOCTYPE s [<!ENTITY % e SYSTEM 'file:///etc/hostname'> %e;]><name>a</name>");
    row("text multiplied by nesting", nested("name", 2000, QByteArray(20'000, 'x')));
}

void ColumnsTest::whatIsNotXmlIsRefused()
{
    QFETCH(QByteArray, text);
    QVERIFY(!read(text));
}

void ColumnsTest::hostileDocumentsEndSoon_data()
{
    QTest::addColumn<QByteArray>("xml");
    QTest::addColumn<bool>("isRead");
    QByteArray attributes;
    for (int i = 0; i < 20'000; ++i)
        attributes += "<!ATTLIST a a" + QByteArray::number(i) + " CDATA 'x'>";

    QTest::newRow("entities that multiply") << entityBomb() << false;
    QTest::newRow("200,000 levels") << nested("x", 200'000, "<id>1</id>") << true;
    QTest::newRow("200,000 levels of a column") << nested("id", 200'000, "") << true;
    QTest::newRow("a tag of 20 MB") << "<id a='" + QByteArray(20'000'000, 'x') + "'/>" << true;
    QTest::newRow("defaults for every element")
        << "<!DOCTYPE a [" + attributes + "]><s>" + QByteArray("<a/>").repeated(200'000) + "</s>" << false;
    QTest::newRow("20 MB of records")
        << "<s>" + QByteArray("<id>1</id><name>twenty characters ab</name>").repeated(450'000) + "</s>"
        << true;
}

void ColumnsTest::hostileDocumentsEndSoon()
{
    QFETCH(QByteArray, xml);
    QElapsedTimer timer;
    timer.start();
    QTEST(read(xml).has_value(), "isRead");
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
