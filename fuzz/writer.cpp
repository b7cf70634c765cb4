// Trees grown from bytes to JSON text. A tree of nothing but what JSON can hold is always written and reads
// as the same tree again; every other one is written, or tells why not.

#include "JsonTrees.h"
#include "Texts.h"
#include "XKJsonParser.h"
#include "XKJsonWriter.h"

#include <cmath>

namespace {

using Value = XKJsonValue;

struct Object : XKJsonObject
{
    explicit Object(std::optional<Value> given) : proxy(std::move(given)) {}
    QString className() const override { return QStringLiteral("Object"); }
    std::optional<Value> proxyForJson() const override { return proxy; }

    std::optional<Value> proxy;
};

/// A byte chooses what comes next; what that needs is taken from the bytes behind it.
class Grower
{
public:
    explicit Grower(Bytes bytes) : m_bytes(bytes) {}

    Value grow()
    {
        m_open.push_back(take<quint8>() % 2 ? Value::dictionary() : Value::array());
        while (!m_bytes.empty())
            step();
        while (m_open.size() > 1)
            add(closed());
        return m_open.front();
    }
    /// Nothing has come that JSON cannot hold.
    bool isPure() const { return m_isPure; }

private:
    template<typename Number>
    Number take()
    {
        Number number{};
        const Bytes taken = m_bytes.first(std::min(sizeof(number), m_bytes.size()));
        std::memcpy(&number, taken.data(), taken.size());
        m_bytes = m_bytes.subspan(taken.size());
        return number;
    }

    QString text()
    {
        const Bytes taken = m_bytes.first(std::min<std::size_t>(take<quint8>(), m_bytes.size()));
        m_bytes = m_bytes.subspan(taken.size());
        return textOf(taken);
    }

    Value unsupported(const Value &value)
    {
        m_isPure = false;
        return value;
    }

    Value real()
    {
        const auto number = take<double>();
        return std::isfinite(number) ? Value::real(number) : unsupported(Value::real(number));
    }

    Value decimal()
    {
        const Value number = Value::decimal(text());
        if (number.isNone())
            return Value::null();
        return std::isfinite(number.decimalView().toDouble()) ? number : unsupported(number);
    }

    Value closed()
    {
        Value value = std::move(m_open.back());
        m_open.pop_back();
        return value;
    }

    void add(const Value &value)
    {
        Value &container = m_open.back();
        if (container.kind() == XKJsonKind::Array)
            return container.append(value);
        const quint8 choice = take<quint8>();
        container.setValue(choice == 0xFF ? unsupported(Value::integer(take<qint8>())) : Value(text()),
                           value);
    }

    void step()
    {
        switch (take<quint8>() % 14) {
        case 0:
            return add(Value::null());
        case 1:
            return add(Value::boolean(take<quint8>() % 2 == 1));
        case 2:
            return add(Value::integer(take<qint64>()));
        case 3:
            return add(Value::integer(take<qint8>()));
        case 4:
            return add(real());
        case 5:
            return add(decimal());
        case 6:
            return add(text());
        case 7:
            return m_open.push_back(Value::array());
        case 8:
            return m_open.push_back(Value::dictionary());
        case 9:
            return m_open.size() > 1 ? add(closed()) : void();
        case 10: // a container becomes the proxy of an object
            return m_open.size() > 1 ? add(objectWith(closed())) : void();
        case 11:
            return add(objectWith(text()));
        case 12:
            return add(unsupported(objectWith(std::nullopt)));
        default:
            return add(unsupported(Value()));
        }
    }

    static Value objectWith(const std::optional<Value> &proxy)
    {
        return Value::object(std::make_shared<Object>(proxy));
    }

    Bytes m_bytes;
    std::vector<Value> m_open;
    bool m_isPure = true;
};

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    if (size == 0)
        return 0;
    Grower grower(Bytes(bytes + 1, size - 1));
    const Value tree = grower.grow();
    XKJsonWriter writer;
    writer.setHumanReadable(bytes[0] & 1);
    writer.setSortKeys(bytes[0] & 2);
    writer.setMaxDepth(bytes[0] & 4 ? 3 : 0);
    const QString written = writer.stringWithObject(tree);
    const auto trace = writer.errorTrace();
    require(written.isNull() == (trace && trace->last().code() == 4),
            "what is not written ends with error 4");
    if (grower.isPure() && writer.maxDepth() == 0)
        require(!written.isNull() && !trace, "a pure tree is written");
    if (trace || !QStringView(written).isValidUtf16())
        return 0; // failed proxies leave holes, and half a surrogate pair is written but not read
    XKJsonParser parser;
    parser.setMaxDepth(0);
    const Value read = parser.objectWithString(written);
    require(isSameTree(tree, read, writer.sortKeys()), "what is written reads the same");
    return 0;
}
