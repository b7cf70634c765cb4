#include "XKJsonWriter.h"
#include "NSObject+XKJSON.h"
#include "Samples.h"
#include "Trees.h"
#include "XKJsonValue.h"
#include "XKJsonParser.h"

#include <limits>

using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(XKJsonValue)

namespace {

using Value = XKJsonValue;

struct Opaque : XKJsonObject
{
    QString className() const override { return u"Opaque"_s; }
};

struct Offering : XKJsonObject
{
    explicit Offering(const Value &given) : proxy(given) {}
    QString className() const override { return u"Offering"_s; }
    std::optional<Value> proxyForJson() const override { return proxy; }

    Value proxy;
};

struct Circular : XKJsonObject, std::enable_shared_from_this<Circular>
{
    explicit Circular(bool inArray) : isInArray(inArray) {}
    QString className() const override { return u"Circular"_s; }
    std::optional<Value> proxyForJson() const override
    {
        const Value self = Value::object(shared_from_this());
        return isInArray ? Value::array({self}) : self;
    }

    bool isInArray;
};

Value opaque()
{
    return Value::object(std::make_shared<Opaque>());
}

Value offering(const Value &proxy)
{
    return Value::object(std::make_shared<Offering>(proxy));
}

Value number(qint64 value)
{
    return Value::integer(value);
}

Value parsed(const QString &text)
{
    XKJsonParser parser;
    parser.setMaxDepth(0);
    return parser.objectWithString(text);
}

QString traceOf(const XKJsonWriter &writer)
{
    QStringList lines;
    for (const XKJsonError &error : writer.errorTrace().value_or(XKJsonErrorList()))
        lines.append(QString::number(error.code()) + u' ' + error.localizedDescription());
    return lines.join(u'\n');
}

} // namespace

class XKJsonWriterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void treesBecomeText_data();
    void treesBecomeText();
    void whatCannotBeWrittenIsToldInFull_data();
    void whatCannotBeWrittenIsToldInFull();
    void linesAreIndentedByDepth_data();
    void linesAreIndentedByDepth();
    void keysAreSortedByTheirUnits();
    void proxiesThatFailLeaveTheirTraceAndTheWritingGoesOn_data();
    void proxiesThatFailLeaveTheirTraceAndTheWritingGoesOn();
    void samplesSurviveTheRoundTrip_data() { addSamples({"valid"_L1}); }
    void samplesSurviveTheRoundTrip();
    void tenMillionNestedArraysAreReadWrittenAndDestroyed();
    void nestsBuiltByHandAreWrittenAndDestroyed();
    void editingACopyLeavesTheOriginal();
    void theObjectEntryLogsItsFailures();
};

void XKJsonWriterTest::treesBecomeText_data()
{
    QTest::addColumn<Value>("tree");
    QTest::addColumn<QString>("text");
    const double largest = std::numeric_limits<double>::max();
    QTest::newRow("empty containers") << Value::array({Value::array(), Value::dictionary()}) << u"[[],{}]"_s;
    QTest::newRow("a boolean is no number")
        << Value::array({Value::boolean(true), number(1), Value::boolean(false), Value::null()})
        << u"[true,1,false,null]"_s;
    QTest::newRow("integers to either end") << Value::array({number(std::numeric_limits<qint64>::min()),
                                                             number(std::numeric_limits<qint64>::max())})
                                            << u"[-9223372036854775808,9223372036854775807]"_s;
    QTest::newRow("doubles in their shortest form")
        << Value::array({Value::real(0.1), Value::real(-2.5e-300), Value::real(largest)})
        << u"[0.1,-2.5e-300,1.7976931348623157e+308]"_s;
    QTest::newRow("decimals as they were")
        << parsed(u"[12.50,1E+3,-0.0,9223372036854775808]"_s) << u"[12.50,1E+3,-0.0,9223372036854775808]"_s;
    QTest::newRow("escapes and none")
        << Value::array({u"\"\\/\b\t\n\f\r\u0001\u001b\u001f\u007f é漢"_s, u"a text without any"_s, u""_s})
        << u"[\"\\\"\\\\/\\b\\t\\n\\f\\r\\u0001\\u001b\\u001f\u007f é漢\",\"a text without any\",\"\"]"_s;
    QTest::newRow("escapes far apart in a long text")
        << Value::array({QString(20, u'x') + u'\n' + QString(7, u'y') + u'"' + QString(40, u'\0')})
        << u"[\""_s + QString(20, u'x') + u"\\n"_s + QString(7, u'y') + u"\\\""_s +
               u"\\u0000"_s.repeated(40) + u"\"]"_s;
    QTest::newRow("members in the order they came")
        << Value::dictionary(
               {{u"b"_s, number(1)}, {u"a\n"_s, Value::array({number(2)})}, {u"b"_s, number(3)}})
        << u"{\"b\":3,\"a\\n\":[2]}"_s;
    QTest::newRow("an object at the top") << offering(offering(Value::array({number(1)}))) << u"[1]"_s;
    QTest::newRow("an object twice, side by side and within its own proxy's neighbour")
        << Value::array({offering(u"p"_s), Value::dictionary({{u"k"_s, offering(Value::dictionary())}})})
        << u"[\"p\",{\"k\":{}}]"_s;
}

void XKJsonWriterTest::treesBecomeText()
{
    QFETCH(XKJsonValue, tree);
    XKJsonWriter writer;
    QTEST(writer.stringWithObject(tree), "text");
    QVERIFY(!writer.errorTrace());
}

void XKJsonWriterTest::whatCannotBeWrittenIsToldInFull_data()
{
    QTest::addColumn<Value>("tree");
    QTest::addColumn<QString>("trace");
    const QString end = u"\n4 Not valid type for JSON"_s;
    const auto row = [&](const char *name, const Value &tree, const QString &trace) {
        QTest::newRow(name) << tree << trace + end;
    };
    const double infinity = std::numeric_limits<double>::infinity();
    const QString isInfinite = u"1 Infinity is not a valid number in JSON"_s;
    QTest::newRow("a string") << Value(u"a"_s) << end.sliced(1);
    QTest::newRow("none") << Value() << end.sliced(1);
    QTest::newRow("an object without a proxy") << opaque() << end.sliced(1);
    row("a proxy that is no container", offering(number(1)), end.sliced(1));
    row("a proxy that is the object itself", Value::object(std::make_shared<Circular>(/*inArray=*/false)),
        u"7 Nested too deep"_s + end);
    row("not a number", Value::array({Value::real(std::numeric_limits<double>::quiet_NaN()), number(1)}),
        u"1 NaN is not a valid number in JSON"_s);
    row("infinity", Value::array({Value::real(infinity)}), isInfinite);
    row("minus infinity", Value::array({Value::real(-infinity)}), isInfinite);
    row("a decimal whose double is infinite", parsed(u"[1.7976931348623159e308]"_s), isInfinite);
    row("a long decimal whose double is infinite", parsed(u'[' + QString(400, u'9') + u']'), isInfinite);
    row("an object within",
        Value::dictionary(
            {{u"ok"_s, number(1)}, {u"a"_s, Value::array({Value::dictionary({{u"b"_s, opaque()}})})}}),
        u"1 JSON serialisation not supported for Opaque\n1 Unsupported value for key b in object\n"
        "1 Unsupported value for key a in object"_s);
    row("none within", Value::array({Value()}), u"1 JSON serialisation not supported for (null)"_s);
    row("a number as key", Value::dictionary({{u"k"_s, Value::dictionary({{number(1), number(2)}})}}),
        u"1 JSON object key must be string\n1 Unsupported value for key k in object"_s);
    row("513 levels", parsed(QString(513, u'[') + QString(513, u']')), u"7 Nested too deep"_s);
}

void XKJsonWriterTest::whatCannotBeWrittenIsToldInFull()
{
    QFETCH(XKJsonValue, tree);
    QFETCH(QString, trace);
    XKJsonWriter writer;
    XKJsonError error;
    QVERIFY(writer.stringWithObject(tree, &error).isNull());
    QCOMPARE(traceOf(writer), trace);
    QCOMPARE(error.code(), 4);
}

void XKJsonWriterTest::linesAreIndentedByDepth_data()
{
    QTest::addColumn<quint64>("maxDepth");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    QTest::newRow("nested") << quint64(512) << u"{\"a\":[1,2],\"b\":{}}"_s
                            << u"{\n  \"a\" : [\n    1,\n    2\n  ],\n  \"b\" : {}\n}"_s;
    QTest::newRow("empty") << quint64(512) << u"[]"_s << u"[]"_s;
    QTest::newRow("deeper than one write of spaces")
        << quint64(512) << u"[[[[[[1]]]]]]"_s
        << u"[\n  [\n    [\n      [\n        [\n          [\n            1\n          ]\n        ]\n      ]\n"
           "    ]\n  ]\n]"_s;
    QTest::newRow("without a limit") << quint64(0) << u"[[1],[2]]"_s << u"[\n[\n1\n],\n[\n2\n]\n]"_s;
}

void XKJsonWriterTest::linesAreIndentedByDepth()
{
    QFETCH(quint64, maxDepth);
    QFETCH(QString, text);
    XKJsonWriter writer;
    writer.setHumanReadable(true);
    writer.setMaxDepth(maxDepth);
    QTEST(writer.stringWithObject(parsed(text)), "expected");
    QCOMPARE(writer.indent(), u"\n"_s);
}

void XKJsonWriterTest::keysAreSortedByTheirUnits()
{
    XKJsonWriter writer;
    writer.setSortKeys(true);
    const QString sorted =
        u"{\"\":0,\"C\":{\"x\":2,\"y\":1},\"a\":3,\"aa\":4,\"b\":[{\"m\":6,\"n\":5}],\"é\":7}"_s;
    const QString text =
        u"{\"b\":[{\"n\":5,\"m\":6}],\"é\":7,\"a\":3,\"aa\":4,\"C\":{\"y\":1,\"x\":2},\"\":0}"_s;
    QCOMPARE(writer.stringWithObject(parsed(text)), sorted);
    QVERIFY(
        writer.stringWithObject(Value::dictionary({{u"a"_s, opaque()}, {Value::null(), Value()}})).isNull());
    QVERIFY(traceOf(writer).startsWith(u"1 JSON object key must be string\n"_s));
}

void XKJsonWriterTest::proxiesThatFailLeaveTheirTraceAndTheWritingGoesOn_data()
{
    QTest::addColumn<Value>("proxy");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("trace");
    const QString unsupported = u"1 JSON serialisation not supported for Opaque"_s;
    QTest::newRow("at once") << offering(opaque()) << u"{\n  \"p\" : ,\n  \"q\" : []\n}"_s << unsupported;
    QTest::newRow("some way in, one level deeper from then on")
        << offering(Value::dictionary({{u"x"_s, Value::array({number(1), opaque()})}}))
        << u"{\n  \"p\" : {\n    \"x\" : [\n      1,\n      ,\n      \"q\" : []\n    }"_s
        << unsupported + u"\n1 Unsupported value for key x in object"_s;
    QTest::newRow("itself") << Value::object(std::make_shared<Circular>(/*inArray=*/false))
                            << u"{\n  \"p\" : ,\n  \"q\" : []\n}"_s << u"7 Nested too deep"_s;
    QTest::newRow("itself in an array")
        << Value::object(std::make_shared<Circular>(/*inArray=*/true))
        << u"{\n  \"p\" : [\n    \n  ],\n  \"q\" : []\n}"_s << u"7 Nested too deep"_s;
}

void XKJsonWriterTest::proxiesThatFailLeaveTheirTraceAndTheWritingGoesOn()
{
    QFETCH(XKJsonValue, proxy);
    XKJsonWriter writer;
    writer.setHumanReadable(true);
    QTEST(writer.stringWithObject(Value::dictionary({{u"p"_s, proxy}, {u"q"_s, Value::array()}})), "text");
    QTEST(traceOf(writer), "trace");
}

void XKJsonWriterTest::samplesSurviveTheRoundTrip()
{
    QFETCH(QString, text);
    XKJsonWriter writer;
    const QString written = writer.stringWithObject(parsed(text));
    QCOMPARE(writer.stringWithObject(parsed(written)), written);
    writer.setHumanReadable(true);
    QTEST(described(parsed(writer.stringWithObject(parsed(written)))), "expected");
}

void XKJsonWriterTest::tenMillionNestedArraysAreReadWrittenAndDestroyed()
{
    constexpr int depth = 10'000'000;
    const QString text = QString(depth, u'[') + QString(depth, u']');
    XKJsonWriter writer;
    writer.setMaxDepth(0);
    QVERIFY(writer.stringWithObject(parsed(text)) == text);
}

void XKJsonWriterTest::nestsBuiltByHandAreWrittenAndDestroyed()
{
    constexpr int depth = 1'000'000;
    Value nest = Value::array();
    for (int level = 1; level < depth; ++level)
        nest = level % 2 ? Value::dictionary({{u""_s, nest}}) : Value::array({nest});
    XKJsonWriter writer;
    writer.setMaxDepth(0);
    QCOMPARE(writer.stringWithObject(nest).size(), depth * 2 + depth / 2 * 3);
}

void XKJsonWriterTest::editingACopyLeavesTheOriginal()
{
    const Value original = parsed(u"{\"a\":[1,2],\"b\":\"t\"}"_s);
    Value copy = original;
    Value list = copy.value(u"a");
    list.append(list);
    list.replaceAt(0, Value::null());
    copy.setValue(u"a"_s, list);
    copy.setValue(number(7), u"seven"_s);
    copy.setValue(Value::boolean(true), u"yes"_s);
    copy.setValue(number(7), u"VII"_s);
    copy.removeAt(1);
    QCOMPARE(described(copy),
             u"{\"a\": [null, integer 2, [integer 1, integer 2]], integer 7: \"VII\", true: \"yes\"}"_s);
    QCOMPARE(copy.valueForKey(number(7)).toString(), u"VII"_s);
    QCOMPARE(copy.value(u"a").count(), std::size_t(3));
    QCOMPARE(described(original), u"{\"a\": [integer 1, integer 2], \"b\": \"t\"}"_s);
    QVERIFY_THROWS_EXCEPTION(std::out_of_range, (void)original.at(2));
}

void XKJsonWriterTest::theObjectEntryLogsItsFailures()
{
    QCOMPARE(NSObject_XKJSON::JSONRepresentation(parsed(u"[1]"_s)), u"[1]"_s);
    QTest::ignoreMessage(QtWarningMsg,
                         "-JSONRepresentation failed. Error trace is: "
                         "(Error Domain=org.quillmere.JSON.ErrorDomain Code=4 \"Not valid type for JSON\")");
    QVERIFY(NSObject_XKJSON::JSONRepresentation(number(1)).isNull());
}

QTEST_APPLESS_MAIN(XKJsonWriterTest)
#include "XKJsonWriterTest.moc"
