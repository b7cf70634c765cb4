#include "XKJsonParser.h"
#include "NSString+XKJSON.h"
#include "Samples.h"
#include "Trees.h"
#include "XKJsonWriter.h"

using namespace Qt::StringLiterals;

namespace {

QString nested(int depth)
{
    return QString(depth, u'[') + QString(depth, u']');
}

/// Tells what it is told of, with the number of errors at that time.
struct Recorder : XKJsonObserver
{
    void willChangeValueForKey(const QString &key) override
    {
        told += u'-' + key + errors();
        if (leaves)
            parser.removeObserver(this);
    }
    void didChangeValueForKey(const QString &key) override { told += u'+' + key + errors(); }
    QString errors() const { return QString::number(parser.errorTrace().value_or(XKJsonErrorList()).size()); }

    explicit Recorder(XKJsonParser &watched, bool once = false) : parser(watched), leaves(once)
    {
        parser.addObserver(this);
    }
    XKJsonParser &parser;
    bool leaves;
    QString told;
};

} // namespace

class XKJsonParserTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // "one-way" holds what can be read, but not written and read again.
    void validTextsBecomeTrees_data() { addSamples({"valid", "one-way"}); }

    void validTextsBecomeTrees()
    {
        QFETCH(QString, text);
        XKJsonParser parser;
        XKJsonError error;
        QTEST(described(parser.objectWithString(text, &error)), "expected");
        QVERIFY(error.isNone() && !parser.errorTrace());
        XKJsonWriter writer;
        const QString written = writer.stringWithObject(parser.objectWithString(text));
        writer.setHumanReadable(true);
        const QString inLines = writer.stringWithObject(parser.objectWithString(written));
        writer.setHumanReadable(false);
        const bool isOneWay = QByteArray(QTest::currentDataTag()).startsWith("values: ");
        QVERIFY(isOneWay || writer.stringWithObject(parser.objectWithString(inLines)) == written);
    }

    void invalidTextsTellTheirWholeTrace_data() { addSamples({"invalid"}); }

    void invalidTextsTellTheirWholeTrace()
    {
        QFETCH(QString, text);
        XKJsonParser parser;
        QVERIFY(parser.objectWithString(text).isNone());
        QTEST(traceOf(parser), "expected");
    }

    // Texts are read and written in blocks: what stands at one place of a block counts as at any other.
    void everyUnitCountsWhereverItStands()
    {
        constexpr int length = 40;
        const QString blanks(length, u' ');
        const QString digits(length, u'1');
        const QString letters = u'"' + QString(length, u'x') + u'"';
        const auto tree = [](QString run, int place, const QString &unit) {
            return XKJsonParser().objectWithString(u'[' + run.replace(place, 1, unit) + u"1]"_s);
        };
        for (int place = 0; place < length; ++place) {
            for (const char16_t space : {u' ', u'\t', u'\n', u'\v', u'\f', u'\r'})
                QCOMPARE(tree(blanks, place, QString(space)).count(), 1);
            for (const char16_t other : {u'\u0008', u'\u000e', u'\u001f', u'!', u'\u00a0'})
                QCOMPARE(tree(blanks, place, QString(other)).count(), 0);
            QCOMPARE(tree(digits, place, u" "_s).count(), place > 0 ? 2 : 1);
            QCOMPARE(tree(digits, place, u"/"_s).count(), 0);
            for (const QString &kept : {u"\U0001F60B"_s, u"\uD7FF"_s, u"\uE000"_s, u"\\n"_s, u"\\\""_s}) {
                const XKJsonValue read = tree(letters, place + 1, kept);
                QCOMPARE(XKJsonWriter().stringWithObject(read),
                         u'[' + QString(letters).replace(place + 1, 1, kept) + u",1]"_s);
            }
            for (const char16_t refused : {char16_t(0xD83D), char16_t(0xDE0B), u'\u001f', u'\t', u'\0'})
                QCOMPARE(tree(letters, place + 1, QString(refused)).count(), 0);
        }
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
        QVERIFY(parser.objectWithString(QString()).isNone());
        QCOMPARE(traceOf(parser), u"12 Input was 'nil'"_s);
        QVERIFY(parser.objectWithString(u""_s).isNone());
        QCOMPARE(traceOf(parser), u"11 Unexpected end of string"_s);
    }

    void nothingIsLeftOfTheCallBefore()
    {
        XKJsonParser parser;
        parser.setMaxDepth(3);
        XKJsonError error;
        parser.objectWithString(u"[[[1 2"_s, &error);
        parser.objectWithString(u"[[[1,]"_s, &error);
        QCOMPARE(traceOf(parser),
                 u"9 Trailing comma disallowed in array"
                 "\n3 Expected value while parsing array\n3 Expected value while parsing array"_s);
        QCOMPARE(described(parser.objectWithString(nested(3), &error)), u"[[[]]]"_s);
        QVERIFY(!parser.errorTrace());
        QCOMPARE(error.code(), 3); // success leaves the caller's error alone
    }

    void observersAreToldAroundEachChange()
    {
        XKJsonParser parser;
        Recorder once(parser, /*once=*/true);
        Recorder always(parser);
        parser.objectWithString(u"[tru"_s);
        QCOMPARE(once.told, u"-errorTrace0+errorTrace0"_s);
        QCOMPARE(always.told, u"-errorTrace0+errorTrace0-errorTrace0+errorTrace1-errorTrace1+errorTrace2"_s);
        parser.removeObserver(&always);
        parser.clearErrorTrace();
        QVERIFY(always.told.endsWith(u"+errorTrace2"));
        QVERIFY(!parser.errorTrace());
    }

    void nestingIsLimited()
    {
        const auto trace = [](quint64 maxDepth, const QString &text) {
            XKJsonParser parser;
            parser.setMaxDepth(maxDepth);
            return parser.objectWithString(text).isNone() ? traceOf(parser) : u"read"_s;
        };
        QCOMPARE(XKJsonParser().maxDepth(), quint64(512));
        QCOMPARE(trace(/*maxDepth=*/512, nested(512)), u"read"_s);
        QVERIFY(trace(/*maxDepth=*/512, nested(513)).startsWith(u"7 Nested too deep\n3 "_s));
        QCOMPARE(trace(/*maxDepth=*/2, u"[[],[],{},{}]"_s), u"read"_s);
        QVERIFY(trace(/*maxDepth=*/2, u"{\"a\":{\"b\":[]}}"_s).startsWith(u"7 Nested too deep\n3 "_s));
        QCOMPARE(trace(/*maxDepth=*/0, QString(1'000'000, u'[')).count(u'\n'), 1'000'000 - 1); // errors
    }

    void membersAreFoundInDictionariesOfAnySize()
    {
        const auto key = [](int i) { return u"a long head "_s + QString::number(i) + u" and a tail"_s; };
        for (const int count : {2, 3, 7, 8, 9, 15, 16, 17, 33, 1000, 20'000}) {
            QString text = u"{"_s;
            for (int i = 0; i < count; ++i)
                text += u'"' + key(i) + u"\":"_s + QString::number(i);
            text += u'"' + key(count - 2) + u"\":-1\"\":-2"_s; // the last but one again, in between
            const XKJsonValue tree = XKJsonParser().objectWithString(text + u'}');
            QCOMPARE(tree.count(), static_cast<std::size_t>(count + 1));
            for (int i = 0; i < count; ++i) {
                const auto place = static_cast<std::size_t>(i);
                const qint64 expected = i == count - 2 ? -1 : i;
                QCOMPARE(tree.keyAt(place).stringView(), key(i));
                QCOMPARE(tree.at(place).toInteger(), expected);
                QCOMPARE(tree.value(key(i)).toInteger(), expected);
            }
            QCOMPARE(tree.value(u""_s).toInteger(), -2);
            QVERIFY(tree.value(key(count)).isNone());
            QVERIFY(!tree.at(1).toBoolean()); // nothing is converted
        }
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
