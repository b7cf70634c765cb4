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

} // namespace

class ColumnsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
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

QTEST_APPLESS_MAIN(ColumnsTest)
#include "ColumnsTest.moc"
