#include "XKJsonParser.h"
#include "NSString+XKJSON.h"
#include "Samples.h"
#include "Trees.h"

#include <clocale>

using namespace Qt::StringLiterals;

namespace {

/// The trace in lines of code and message, oldest first.
QString traceOf(const XKJsonParser &parser)
{
    QStringList lines;
    for (const XKJsonError &error : parser.errorTrace().value_or(XKJsonErrorList()))
        lines.append(QString::number(error.code()) + u' ' + error.localizedDescription());
    return lines.join(u'\n');
}

QString nested(int depth)
{
    return QString(depth, u'[') + QString(depth, u']');
}

} // namespace

class XKJsonParserTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // "one-way" holds what can be read, but not written and read again.
    void validTextsBecomeTrees_data() { addSamples({"valid"_L1, "one-way"_L1}); }

    void validTextsBecomeTrees()
    {
        QFETCH(QString, text);
        QFETCH(QString, expected);
        XKJsonParser parser;
        XKJsonError error;
        QCOMPARE(described(parser.objectWithString(text, &error)), expected);
        QVERIFY(error.isNone());
        QVERIFY(!parser.errorTrace());
    }

    void invalidTextsTellTheirWholeTrace_data() { addSamples({"invalid"_L1}); }

    void invalidTextsTellTheirWholeTrace()
    {
        QFETCH(QString, text);
        QFETCH(QString, expected);
        XKJsonParser parser;
        QVERIFY(parser.objectWithString(text.isNull() ? u""_s : text).isNone());
        QCOMPARE(traceOf(parser), expected);
    }

    void everyErrorLeadsToTheFirst()
    {
        XKJsonParser parser;
        XKJsonError error;
        QVERIFY(parser.objectWithString(u"[\"\\ux\"]"_s, &error).isNone());
        QStringList chain;
        for (; !error.isNone(); error = error.underlyingError())
            chain.append(error.localizedDescription());
        QCOMPARE(chain, QStringList({u"Expected value while parsing array"_s, u"Broken unicode character"_s,
                                     u"Missing hex quad"_s, u"Missing hex digit in quad"_s}));
        QCOMPARE(XKJsonError::domain(), u"org.quillmere.JSON.ErrorDomain"_s);
    }

    void noTextAtAllIsAnErrorOfItsOwn()
    {
        XKJsonParser parser;
        QVERIFY(parser.objectWithString(QString()).isNone());
        QCOMPARE(traceOf(parser), u"12 Input was 'nil'"_s);
    }

    void theTraceIsOfTheLastCallOnly()
    {
        XKJsonParser parser;
        XKJsonError error;
        parser.objectWithString(u"[[[1 2"_s, &error);
        parser.objectWithString(u"[1,]"_s, &error);
        QCOMPARE(traceOf(parser), u"9 Trailing comma disallowed in array"_s);
        QCOMPARE(described(parser.objectWithString(u"[1]"_s, &error)), u"[integer 1]"_s);
        QVERIFY(!parser.errorTrace());
        QCOMPARE(error.code(), 9); // success leaves the caller's error alone
        parser.objectWithString(
            u"{\"ab\":1,\"cd\":2,\"ef\":3}"_s); // nor is anything kept of a text that has gone
        QCOMPARE(parser.objectWithString(u"{\"ab\":1,\"cd\":2,\"ef\":3,\"x\":\"long enough\"}"_s).count(), 4);
    }

    void observersAreToldAroundEachChange()
    {
        struct Recorder : XKJsonObserver
        {
            void willChangeValueForKey(const QString &key) override { told += u'-' + key + errors(); }
            void didChangeValueForKey(const QString &key) override { told += u'+' + key + errors(); }
            QString errors() const
            {
                return QString::number(parser.errorTrace().value_or(XKJsonErrorList()).size());
            }

            QString told;
            XKJsonParser parser;
        } recorder;
        recorder.parser.addObserver(&recorder);
        recorder.parser.objectWithString(u"[tru"_s);
        QCOMPARE(recorder.told,
                 u"-errorTrace0+errorTrace0-errorTrace0+errorTrace1-errorTrace1+errorTrace2"_s);
        recorder.parser.removeObserver(&recorder);
        recorder.told.clear();
        recorder.parser.clearErrorTrace();
        QVERIFY(recorder.told.isEmpty());
        QVERIFY(!recorder.parser.errorTrace());
    }

    void nestingIsLimited_data()
    {
        QTest::addColumn<int>("maxDepth");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("isRead");
        QTest::newRow("as deep as by default") << 512 << nested(512) << true;
        QTest::newRow("one deeper") << 512 << nested(513) << false;
        QTest::newRow("side by side does not count") << 2 << u"[[],[],{},{}]"_s << true;
        QTest::newRow("dictionaries count") << 2 << u"{\"a\":{\"b\":[]}}"_s << false;
        QTest::newRow("no limit") << 0 << nested(100'000) << true;
    }

    void nestingIsLimited()
    {
        QFETCH(int, maxDepth);
        QFETCH(QString, text);
        QFETCH(bool, isRead);
        XKJsonParser parser;
        QCOMPARE(parser.maxDepth(), quint64(512));
        parser.setMaxDepth(static_cast<quint64>(maxDepth));
        QCOMPARE(!parser.objectWithString(text).isNone(), isRead);
        QCOMPARE(traceOf(parser).startsWith(u"7 Nested too deep\n3 "_s), !isRead);
    }

    void aMillionOpenBracketsFailWithAMillionErrors()
    {
        XKJsonParser parser;
        parser.setMaxDepth(0);
        QVERIFY(parser.objectWithString(QString(1'000'000, u'[')).isNone());
        const XKJsonErrorList trace = *parser.errorTrace();
        QCOMPARE(trace.size(), 1'000'000);
        QCOMPARE(trace.first().localizedDescription(), u"End of input while parsing array"_s);
    }

    void membersAreFoundInDictionariesOfAnySize_data()
    {
        QTest::addColumn<int>("count");
        for (const int count : {0, 1, 2, 63, 64, 65, 100, 1000, 20'000})
            QTest::newRow(qPrintable(QString::number(count))) << count;
    }

    void membersAreFoundInDictionariesOfAnySize()
    {
        QFETCH(int, count);
        const auto key = [](int i) { return u"a long head "_s + QString::number(i) + u" and a tail"_s; };
        QString text = u"{"_s;
        for (int i = 0; i < count; ++i)
            text += u'"' + key(i) + u"\":"_s + QString::number(i);
        if (count > 1) // the last but one again, in between
            text += u'"' + key(count - 2) + u"\":-1\"last\":-2"_s;
        const XKJsonValue tree = XKJsonParser().objectWithString(text + u'}');
        QCOMPARE(tree.count(), static_cast<std::size_t>(count > 1 ? count + 1 : count));
        for (int i = 0; i < count; ++i) {
            QCOMPARE(tree.keyAt(static_cast<std::size_t>(i)).stringView(), key(i));
            const qint64 expected = count > 1 && i == count - 2 ? -1 : i;
            QCOMPARE(tree.at(static_cast<std::size_t>(i)).toInteger(), expected);
            QCOMPARE(tree.value(key(i)).toInteger(), expected);
        }
        QVERIFY(tree.value(key(count)).isNone());
        QVERIFY(tree.value(u""_s).isNone());
    }

    void largeContainersStandBetweenOtherValues()
    {
        constexpr std::size_t few = 100;
        constexpr int many = 100'000;
        QString numbers;
        QString members;
        for (int i = 0; i < many; ++i) {
            numbers += QString::number(i) + u' ';
            members += u"\"%1\":%1"_s.arg(i);
        }
        const QString head = QString(u"7 "_s).repeated(few);
        const XKJsonValue tree = XKJsonParser().objectWithString(u'[' + head + u'[' + numbers + u"]{"_s +
                                                                 members + u"}8["_s + numbers + u"]9]"_s);
        QCOMPARE(tree.count(), few + 5);
        for (std::size_t i = 0; i < few; ++i)
            QCOMPARE(tree.at(i).toInteger(), 7);
        QCOMPARE(tree.at(few + 2).toInteger(), 8);
        QCOMPARE(tree.at(few + 4).toInteger(), 9);
        for (int i = 0; i < many; ++i) {
            const auto place = static_cast<std::size_t>(i);
            for (const std::size_t container : {few, few + 1, few + 3})
                QCOMPARE(tree.at(container).at(place).toInteger(), i);
            QCOMPARE(tree.at(few + 1).value(QString::number(i)).toInteger(), i);
        }
    }

    void aForeignLocaleChangesNothing()
    {
        QLocale::setDefault(QLocale(QLocale::German));
        std::setlocale(LC_ALL, "de_DE.UTF-8");
        const XKJsonValue tree = XKJsonParser().objectWithString(u"[1234567,1.5,1e2]"_s);
        XKJsonParser parser;
        const bool commaIsNoPoint = parser.objectWithString(u"[1,5 true]"_s).count() == 3;
        const double real = tree.at(1).toDecimal()->toDouble();
        std::setlocale(LC_ALL, "C");
        QLocale::setDefault(QLocale::c());
        QCOMPARE(described(tree), u"[integer 1234567, decimal 1.5, decimal 1e2]"_s);
        QVERIFY(commaIsNoPoint);
        QCOMPARE(real, 1.5);
    }

    void textsInBorrowedMemoryAreReadToTheirEndOnly()
    {
        const QString memory = u"[12345]67"_s;
        XKJsonParser parser;
        QVERIFY(parser.objectWithString(QString::fromRawData(memory.constData(), 5)).isNone());
        QCOMPARE(described(parser.objectWithString(QString::fromRawData(memory.constData(), 7))),
                 u"[integer 12345]"_s);
    }

    void theStringEntryLogsItsFailures()
    {
        QCOMPARE(described(NSString_XKJSON::JSONValue(u"{\"result\":\"OK\"}"_s)), u"{\"result\": \"OK\"}"_s);
        QTest::ignoreMessage(
            QtWarningMsg,
            "-JSONValue failed. Error trace is: "
            "(Error Domain=org.quillmere.JSON.ErrorDomain Code=3 \"Expected 'true'\", "
            "Error Domain=org.quillmere.JSON.ErrorDomain Code=3 \"Object value expected for key: a\")");
        QVERIFY(NSString_XKJSON::JSONValue(u"{\"a\":tru}"_s).isNone());
    }
};

QTEST_APPLESS_MAIN(XKJsonParserTest)
#include "XKJsonParserTest.moc"
