#include "XKJsonWriter.h"
#include "NSObject+XKJSON.h"
#include "Samples.h"
#include "Trees.h"
#include "XKJsonParser.h"

#include <functional>
#include <limits>

using namespace Qt::StringLiterals;

using Value = XKJsonValue;

Q_DECLARE_METATYPE(XKJsonValue)

namespace {

struct Object : XKJsonObject
{
    explicit Object(std::function<std::optional<Value>()> given) : offer(std::move(given)) {}
    QString className() const override { return u"Object"_s; }
    std::optional<Value> proxyForJson() const override { return offer(); }

    std::function<std::optional<Value>()> offer;
};

Value offering(const std::optional<Value> &proxy)
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

/// So many objects in an array, each the proxy of the next, around an array.
Value chained(int count)
{
    Value chain = Value::array({Value::integer(7)});
    for (; count > 0; --count)
        chain = offering(chain);
    return Value::array({chain});
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

    const Value m_one = Value::integer(1);
    const Value m_opaque = offering(std::nullopt);
    const QString m_end = u"4 Not valid type for JSON"_s;

    static void addRow(const char *name, const Value &tree, const QString &text, const QString &trace = {})
    {
        QTest::newRow(name) << tree << text << trace;
    }

private Q_SLOTS:
    // What no text stands for; the rest is in the samples.
    void treesAreWritten_data() const
    {
        QTest::addColumn<Value>("tree");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("trace");
        const double most = std::numeric_limits<double>::max();
        const Value twice = offering(Value::array({offering(u"p"_s)}));
        addRow("the least integer", Value::array({Value::integer(std::numeric_limits<qint64>::min())}),
               u"[-9223372036854775808]"_s);
        addRow("doubles in their shortest form",
               Value::array({Value::real(0.1), Value::real(-2.5e-300), Value::real(most)}),
               u"[0.1,-2.5e-300,1.7976931348623157e+308]"_s);
        addRow("decimals made by hand", Value::array({Value::decimal(u"-1.50E+9"_s)}), u"[-1.50E+9]"_s);
        addRow("texts made by hand", Value::array({u"a\tb"_s, QString()}), u"[\"a\\tb\",\"\"]"_s);
        addRow("an object at the top", offering(offering(Value::array({m_one}))), u"[1]"_s);
        addRow("one object more than once",
               Value::array({twice, twice, Value::dictionary({{u"k"_s, twice}})}),
               u"[[\"p\"],[\"p\"],{\"k\":[\"p\"]}]"_s);

        const auto refused = [this](const char *name, const Value &tree, const QString &trace) {
            addRow(name, tree, QString(), trace + u'\n' + m_end);
        };
        const QString isInfinite = u"1 Infinity is not a valid number in JSON"_s;
        addRow("a string", u"a"_s, QString(), m_end);
        addRow("none", Value(), QString(), m_end);
        addRow("an object without a proxy", m_opaque, QString(), m_end);
        refused("a proxy that is no container", offering(m_one), m_end);
        refused("a proxy that is the object itself", circular(/*inArray=*/false),
                u"7 Nested too deep\n"_s + m_end);
        refused("not a number", Value::array({Value::real(std::numeric_limits<double>::quiet_NaN()), m_one}),
                u"1 NaN is not a valid number in JSON"_s);
        refused("minus infinity", Value::array({Value::real(-std::numeric_limits<double>::infinity())}),
                isInfinite);
        refused("a decimal whose double is infinite", parsed(u"[1.7976931348623159e308]"_s), isInfinite);
        refused("a long decimal whose double is infinite", parsed(u'[' + QString(400, u'9') + u']'),
                isInfinite);
        const Value inner = Value::array({Value::dictionary({{u"b"_s, m_opaque}})});
        refused("an object within", Value::dictionary({{u"ok"_s, m_one}, {u"a"_s, inner}}),
                u"1 JSON serialisation not supported for Object\n1 Unsupported value for key b in object\n"
                "1 Unsupported value for key a in object"_s);
        refused("none within", Value::array({Value()}), u"1 JSON serialisation not supported for (null)"_s);
        refused("a number as key", Value::dictionary({{u"k"_s, Value::dictionary({{m_one, m_one}})}}),
                u"1 JSON object key must be string\n1 Unsupported value for key k in object"_s);
        refused("keys: no string is sorted first",
                Value::dictionary({{u"a"_s, m_opaque}, {Value::null(), Value()}}),
                u"1 JSON object key must be string"_s);
        refused("513 levels", parsed(QString(513, u'[') + QString(513, u']')), u"7 Nested too deep"_s);

        // A proxy that fails leaves its trace, and the writing goes on.
        const auto failing = [](const char *name, const Value &proxy, const QString &text,
                                const QString &trace) {
            addRow(name, Value::dictionary({{u"p"_s, proxy}, {u"q"_s, Value::array()}}), text, trace);
        };
        const Value someWayIn = Value::dictionary({{u"x"_s, Value::array({m_one, m_opaque})}});
        const QString unsupported = u"1 JSON serialisation not supported for Object"_s;
        failing("lines: at once", offering(m_opaque), u"{\n  \"p\" : ,\n  \"q\" : []\n}"_s, unsupported);
        failing("lines: some way in, one level deeper from then on", offering(someWayIn),
                u"{\n  \"p\" : {\n    \"x\" : [\n      1,\n      ,\n      \"q\" : []\n    }"_s,
                unsupported + u"\n1 Unsupported value for key x in object"_s);
        failing("lines: itself", circular(/*inArray=*/false), u"{\n  \"p\" : ,\n  \"q\" : []\n}"_s,
                u"7 Nested too deep"_s);
        failing("lines: itself in an array", circular(/*inArray=*/true),
                u"{\n  \"p\" : [\n    \n  ],\n  \"q\" : []\n}"_s, u"7 Nested too deep"_s);
        addRow("10,000 objects inside each other", chained(10'000), u"[[7]]"_s);
        addRow("one more", chained(10'001), u"[]"_s, u"7 Nested too deep"_s);
    }

    void treesAreWritten()
    {
        QFETCH(XKJsonValue, tree);
        XKJsonWriter writer;
        writer.setHumanReadable(QByteArray(QTest::currentDataTag()).startsWith("lines"));
        writer.setSortKeys(QByteArray(QTest::currentDataTag()).startsWith("keys"));
        XKJsonError error;
        const QString text = writer.stringWithObject(tree, &error);
        QTEST(text, "text");
        QTEST(traceOf(writer), "trace");
        QCOMPARE(error.code(), text.isNull() ? 4 : 0);
    }

    void textsAreWrittenAnew_data() { addSamples({"compact", "indented", "sorted"}); }

    void textsAreWrittenAnew()
    {
        QFETCH(QString, text);
        const QByteArray row = QTest::currentDataTag();
        XKJsonWriter writer;
        writer.setHumanReadable(row.startsWith("lines"));
        writer.setSortKeys(row.startsWith("keys"));
        QTEST(writer.stringWithObject(parsed(text)), "expected");
        QCOMPARE(writer.indent(), u"\n"_s);
    }

    // Levels are not counted then, so nothing is indented; no machine stack is needed, however deep.
    void withoutALimitAnyDepthIsWrittenAndDestroyed()
    {
        XKJsonWriter writer;
        writer.setMaxDepth(0);
        constexpr int depth = 1'000'000;
        const QString text = QString(depth, u'[') + QString(depth, u']');
        QVERIFY(writer.stringWithObject(parsed(text)) == text);
        QCOMPARE(writer.stringWithObject(chained(200'000)), u"[[7]]"_s);
        Value nest = Value::array();
        for (int level = 1; level < depth; ++level)
            nest = level % 2 ? Value::dictionary({{u""_s, nest}}) : Value::array({nest});
        QCOMPARE(writer.stringWithObject(nest).size(), depth * 2 + depth / 2 * 3);
        writer.setHumanReadable(true);
        QCOMPARE(writer.stringWithObject(parsed(u"[[1],[2]]"_s)), u"[\n[\n1\n],\n[\n2\n]\n]"_s);
    }

    void editingACopyLeavesTheOriginal()
    {
        const Value original = parsed(u"{\"a\":[1,2],\"b\":\"t\"}"_s);
        Value copy = original;
        Value list = copy.value(u"a");
        list.append(list);
        list.setValue(u"no dictionary"_s, m_one);
        copy.setValue(u"a"_s, list);
        for (const QString &text : {u"seven"_s, u"VII"_s})
            copy.setValue(Value::integer(7), text);
        copy.setValue(Value::boolean(true), u"yes"_s);
        QCOMPARE(described(copy), u"{\"a\": [integer 1, integer 2, [integer 1, integer 2]], \"b\": \"t\", "
                                  "integer 7: \"VII\", true: \"yes\"}"_s);
        QCOMPARE(copy.value(u"a").count(), std::size_t(3));
        QCOMPARE(described(original), u"{\"a\": [integer 1, integer 2], \"b\": \"t\"}"_s);
        QVERIFY_THROWS_EXCEPTION(std::out_of_range, (void)original.at(2));
    }

    void handMadeContainersAreCopiedAtAnEdit()
    {
        for (const int count : {3, 8, 9, 17, 1000}) {
            Value original = Value::dictionary();
            for (int i = 0; i < count; ++i)
                original.setValue(QString::number(i), Value::integer(i));
            const QString before = described(original);
            Value outer = Value::array({original});
            Value copy = original;
            copy.setValue(u"0"_s, u"zero"_s);
            copy.setValue(u"new"_s, copy);
            copy.setValue(u"1"_s, outer);
            outer.append(Value::null());
            QCOMPARE(described(original), before);
            QCOMPARE(described(outer.at(0)), before);
            QCOMPARE(described(copy.value(u"1")), u'[' + before + u']');
            QCOMPARE(copy.value(u"0").toString(), u"zero"_s);
            QCOMPARE(copy.value(u"new").count(), static_cast<std::size_t>(count));
        }
    }

    void theObjectEntryLogsItsFailures()
    {
        QCOMPARE(NSObject_XKJSON::JSONRepresentation(parsed(u"[1]"_s)), u"[1]"_s);
        QTest::ignoreMessage(QtWarningMsg,
                             "-JSONRepresentation failed. Error trace is: (Error Domain="
                             "org.quillmere.JSON.ErrorDomain Code=4 \"Not valid type for JSON\")");
        QVERIFY(NSObject_XKJSON::JSONRepresentation(m_one).isNull());
    }
};

QTEST_APPLESS_MAIN(XKJsonWriterTest)
#include "XKJsonWriterTest.moc"
