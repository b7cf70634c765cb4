#include "XKJsonWriter.h"
#include "NSObject+XKJSON.h"
#include "Samples.h"
#include "Trees.h"
#include "XKJsonParser.h"
#include "XKJsonValue.h"

#include <functional>
#include <limits>

using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(XKJsonValue)

namespace {

using Value = XKJsonValue;

struct Object : XKJsonObject
{
    explicit Object(std::function<std::optional<Value>()> given) : offer(std::move(given)) {}
    QString className() const override { return u"Object"_s; }
    std::optional<Value> proxyForJson() const override { return offer(); }

    std::function<std::optional<Value>()> offer;
};

Value opaque()
{
    return Value::object(std::make_shared<Object>([] { return std::nullopt; }));
}

Value offering(const Value &proxy)
{
    return Value::object(std::make_shared<Object>([proxy] { return proxy; }));
}

/// An object that stands for itself, or for an array of itself.
Value circular(bool inArray)
{
    const auto object = std::make_shared<Object>(nullptr);
    object->offer = [inArray, own = std::weak_ptr<Object>(object)] {
        const Value self = Value::object(own.lock());
        return inArray ? Value::array({self}) : self;
    };
    return Value::object(object);
}

/// So many objects, each the proxy of the next, around an array.
Value chained(int count)
{
    Value chain = Value::array({Value::integer(7)});
    for (; count > 0; --count)
        chain = offering(chain);
    return chain;
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

} // namespace

class XKJsonWriterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void treesBecomeText_data();
    void treesBecomeText();
    void whatCannotBeWrittenIsToldInFull_data();
    void whatCannotBeWrittenIsToldInFull();
    void textsAreWrittenAnew_data();
    void textsAreWrittenAnew();
    void withoutALimitNothingIsIndented();
    void keysThatAreNoStringsAreSortedFirst();
    void proxiesThatFailLeaveTheirTraceAndTheWritingGoesOn_data();
    void proxiesThatFailLeaveTheirTraceAndTheWritingGoesOn();
    void samplesSurviveTheRoundTrip_data() { addSamples({"valid"_L1}); }
    void samplesSurviveTheRoundTrip();
    void tenMillionNestedArraysAreReadWrittenAndDestroyed();
    void nestsBuiltByHandAreWrittenAndDestroyed();
    void editingACopyLeavesTheOriginal();
    void handMadeContainersAreCopiedAtAnEdit();
    void objectsInsideEachOtherAreWrittenAndDestroyed();
    void theObjectEntryLogsItsFailures();
};

// What no text stands for; the rest is in the samples.
void XKJsonWriterTest::treesBecomeText_data()
{
    QTest::addColumn<Value>("tree");
    QTest::addColumn<QString>("text");
    QTest::newRow("the least integer")
        << Value::array({number(std::numeric_limits<qint64>::min())}) << u"[-9223372036854775808]"_s;
    QTest::newRow("doubles in their shortest form")
        << Value::array(
               {Value::real(0.1), Value::real(-2.5e-300), Value::real(std::numeric_limits<double>::max())})
        << u"[0.1,-2.5e-300,1.7976931348623157e+308]"_s;
    QTest::newRow("texts made by hand") << Value::array({u"a\tb"_s, QString()}) << u"[\"a\\tb\",\"\"]"_s;
    QTest::newRow("an object at the top") << offering(offering(Value::array({number(1)}))) << u"[1]"_s;
    const Value twice = offering(Value::array({offering(u"p"_s)}));
    QTest::newRow("one object more than once")
        << Value::array({twice, twice, Value::dictionary({{u"k"_s, twice}})})
        << u"[[\"p\"],[\"p\"],{\"k\":[\"p\"]}]"_s;
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
    row("a proxy that is the object itself", circular(/*inArray=*/false), u"7 Nested too deep"_s + end);
    row("not a number", Value::array({Value::real(std::numeric_limits<double>::quiet_NaN()), number(1)}),
        u"1 NaN is not a valid number in JSON"_s);
    row("infinity", Value::array({Value::real(infinity)}), isInfinite);
    row("minus infinity", Value::array({Value::real(-infinity)}), isInfinite);
    row("a decimal whose double is infinite", parsed(u"[1.7976931348623159e308]"_s), isInfinite);
    row("a long decimal whose double is infinite", parsed(u'[' + QString(400, u'9') + u']'), isInfinite);
    row("an object within",
        Value::dictionary(
            {{u"ok"_s, number(1)}, {u"a"_s, Value::array({Value::dictionary({{u"b"_s, opaque()}})})}}),
        u"1 JSON serialisation not supported for Object\n1 Unsupported value for key b in object\n"
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

void XKJsonWriterTest::textsAreWrittenAnew_data()
{
    addSamples({"compact"_L1, "indented"_L1, "sorted"_L1});
}

void XKJsonWriterTest::textsAreWrittenAnew()
{
    QFETCH(QString, text);
    const QByteArray row = QTest::currentDataTag();
    XKJsonWriter writer;
    writer.setHumanReadable(row.startsWith("lines"));
    writer.setSortKeys(row.startsWith("keys"));
    QTEST(writer.stringWithObject(parsed(text)), "expected");
    QCOMPARE(writer.indent(), u"\n"_s);
}

void XKJsonWriterTest::withoutALimitNothingIsIndented()
{
    XKJsonWriter writer;
    writer.setHumanReadable(true);
    writer.setMaxDepth(0);
    QCOMPARE(writer.stringWithObject(parsed(u"[[1],[2]]"_s)), u"[\n[\n1\n],\n[\n2\n]\n]"_s);
}

void XKJsonWriterTest::keysThatAreNoStringsAreSortedFirst()
{
    XKJsonWriter writer;
    writer.setSortKeys(true);
    QVERIFY(
        writer.stringWithObject(Value::dictionary({{u"a"_s, opaque()}, {Value::null(), Value()}})).isNull());
    QVERIFY(traceOf(writer).startsWith(u"1 JSON object key must be string\n"_s));
}

void XKJsonWriterTest::proxiesThatFailLeaveTheirTraceAndTheWritingGoesOn_data()
{
    QTest::addColumn<Value>("proxy");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("trace");
    const QString unsupported = u"1 JSON serialisation not supported for Object"_s;
    QTest::newRow("at once") << offering(opaque()) << u"{\n  \"p\" : ,\n  \"q\" : []\n}"_s << unsupported;
    QTest::newRow("some way in, one level deeper from then on")
        << offering(Value::dictionary({{u"x"_s, Value::array({number(1), opaque()})}}))
        << u"{\n  \"p\" : {\n    \"x\" : [\n      1,\n      ,\n      \"q\" : []\n    }"_s
        << unsupported + u"\n1 Unsupported value for key x in object"_s;
    QTest::newRow("itself") << circular(/*inArray=*/false) << u"{\n  \"p\" : ,\n  \"q\" : []\n}"_s
                            << u"7 Nested too deep"_s;
    QTest::newRow("itself in an array")
        << circular(/*inArray=*/true) << u"{\n  \"p\" : [\n    \n  ],\n  \"q\" : []\n}"_s
        << u"7 Nested too deep"_s;
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

void XKJsonWriterTest::handMadeContainersAreCopiedAtAnEdit()
{
    for (const int count : {3, 8, 9, 17}) {
        Value original = Value::dictionary();
        for (int i = 0; i < count; ++i)
            original.setValue(QString::number(i), number(i));
        const QString before = described(original);
        Value outer = Value::array({original});
        Value copy = original;
        copy.removeAt(1);
        copy.setValue(u"0"_s, u"zero"_s);
        copy.setValue(u"new"_s, copy);
        copy.replaceAt(1, outer);
        outer.append(Value::null());
        QCOMPARE(described(original), before);
        QCOMPARE(described(outer.at(0)), before);
        QCOMPARE(described(copy.at(1)), u'[' + before + u']');
        QCOMPARE(copy.value(u"0").toString(), u"zero"_s);
        QVERIFY(copy.value(u"1").isNone());
        QCOMPARE(copy.value(u"new").count(), static_cast<std::size_t>(count - 1));
    }
}

void XKJsonWriterTest::objectsInsideEachOtherAreWrittenAndDestroyed()
{
    XKJsonWriter writer;
    QCOMPARE(writer.stringWithObject(Value::array({chained(10'000)})), u"[[7]]"_s);
    QCOMPARE(writer.stringWithObject(Value::array({chained(10'001)})), u"[]"_s);
    QCOMPARE(traceOf(writer), u"7 Nested too deep"_s);
    writer.setMaxDepth(0);
    QCOMPARE(writer.stringWithObject(Value::array({chained(200'000)})), u"[[7]]"_s);
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
