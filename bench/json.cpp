// JSON text to a tree and back, against RapidJSON's tree with UTF-16 strings and, reading, QJsonDocument. The
// other subjects compare one text with another of ours: seconds_per_byte is to stay the same.
// peak_per_byte is the memory used beyond the text itself, in bytes per UTF-8 byte of it, and allocations
// those of reading once. JSON files named as arguments are measured as well.

#include "JsonTexts.h"
#include "PeakMemory.h"
#include "XKJsonParser.h"
#include "XKJsonWriter.h"

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <memory>
#include <new>
#include <QFileInfo>
#include <QJsonDocument>
#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
#include <string>

namespace {

std::size_t allocations = 0;

using Utf16 = rapidjson::UTF16<char16_t>;
using PeerTree = rapidjson::GenericDocument<Utf16>;
using PeerText = rapidjson::GenericStringBuffer<Utf16>;

XKJsonValue treeOf(const QString &text)
{
    XKJsonParser parser;
    parser.setMaxDepth(0);
    XKJsonValue tree = parser.objectWithString(text);
    if (tree.isNone())
        qFatal("%s", qPrintable(parser.errorTraceDescription().left(1000)));
    return tree;
}

void parsePeer(const QString &text, PeerTree &tree)
{
    tree.Parse<rapidjson::kParseDefaultFlags>(reinterpret_cast<const char16_t *>(text.utf16()));
    if (tree.HasParseError())
        qFatal("the peer refuses the text");
}

QString textOf(const XKJsonValue &tree, bool humanReadable)
{
    XKJsonWriter writer;
    writer.setHumanReadable(humanReadable);
    return writer.stringWithObject(tree);
}

template<typename Work>
std::size_t allocationsOf(Work work)
{
    const std::size_t before = allocations;
    work();
    return allocations - before;
}

void countBytes(benchmark::State &state, std::size_t bytes)
{
    using benchmark::Counter;
    state.counters["seconds_per_byte"] =
        Counter(static_cast<double>(bytes), Counter::kIsIterationInvariantRate | Counter::kInvert);
}

template<typename Work>
void add(const std::string &name, Work work)
{
    benchmark::RegisterBenchmark(name.c_str(), work);
}

/// Reading, with the tree's end: what is kept per text differs, and letting go of it is part of the cost.
void addParsing(const std::string &name, const QString &text)
{
    const QByteArray utf8 = text.toUtf8();
    const double peak = peakMemoryOf(
        [] {
            treeOf(JsonTexts::records(/*count=*/3)
                       .replace(QLatin1StringView("Run"), QLatin1StringView("\\nRun")));
            treeOf(JsonTexts::dictionaries(/*count=*/1, /*members=*/12));
        },
        [&] { benchmark::DoNotOptimize(treeOf(text)); });
    add(name + "/ours", [text, utf8, peak](benchmark::State &state) {
        for (auto _ : state)
            benchmark::DoNotOptimize(treeOf(text));
        countBytes(state, static_cast<std::size_t>(utf8.size()));
        state.counters["peak_per_byte"] = peak / static_cast<double>(utf8.size());
        state.counters["allocations"] = static_cast<double>(allocationsOf([&] { treeOf(text); }));
    });
    add(name + "/peer-rapidjson", [text](benchmark::State &state) {
        for (auto _ : state) {
            PeerTree tree;
            parsePeer(text, tree);
            benchmark::DoNotOptimize(tree);
        }
    });
    add(name + "/peer-QJsonDocument", [utf8](benchmark::State &state) {
        for (auto _ : state)
            benchmark::DoNotOptimize(QJsonDocument::fromJson(utf8));
    });
}

void addWriting(const std::string &name, const QString &text)
{
    for (const bool humanReadable : {false, true})
        add(name + (humanReadable ? "/indented" : "/ours"), [text, humanReadable](benchmark::State &state) {
            const XKJsonValue tree = treeOf(text);
            for (auto _ : state)
                benchmark::DoNotOptimize(textOf(tree, humanReadable));
        });
    add(name + "/peer-rapidjson", [text](benchmark::State &state) {
        PeerTree tree;
        parsePeer(text, tree);
        for (auto _ : state) {
            PeerText buffer;
            rapidjson::Writer<PeerText, Utf16, Utf16> writer(buffer);
            tree.Accept(writer);
            benchmark::DoNotOptimize(buffer.GetString());
        }
    });
}

/// Reading and writing back; the text is made at the first turn, since some are large. The round before the
/// clock starts is for the large ones: a virtual machine gives memory away that is not in use, and getting it
/// back takes several times as long as all the rest. Small texts never wait for that.
void addRoundTrip(const std::string &name, QString (*textWith)(int, int), int count, int size)
{
    auto text = std::make_shared<QString>();
    add(name, [text, textWith, count, size](benchmark::State &state) {
        if (text->isNull())
            *text = textWith(count, size);
        XKJsonWriter writer;
        writer.setMaxDepth(0);
        const auto round = [&] { return writer.stringWithObject(treeOf(*text)); };
        benchmark::DoNotOptimize(round());
        for (auto _ : state)
            benchmark::DoNotOptimize(round());
        countBytes(state, static_cast<std::size_t>(text->size()));
    });
}

void addFile(const QFileInfo &info)
{
    QFile file(info.filePath());
    if (!file.open(QIODevice::ReadOnly))
        qFatal("%s cannot be read", qPrintable(info.filePath()));
    const QString text = QString::fromUtf8(file.readAll());
    const std::string name = info.baseName().toStdString();
    addParsing("json/parse/" + name, text);
    addWriting("json/write/" + name, text);
}

QString recordsOf(int count, int)
{
    return JsonTexts::records(count);
}

} // namespace

void *operator new(std::size_t size)
{
    ++allocations;
    if (void *const memory = std::malloc(size))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void *memory) noexcept
{
    std::free(memory);
}

void operator delete(void *memory, std::size_t) noexcept
{
    std::free(memory);
}

int main(int count, char **arguments)
{
    addParsing("json/parse/posts", JsonTexts::posts());
    addParsing("json/parse/catalog", JsonTexts::catalog());
    addParsing("json/parse/coordinates", JsonTexts::coordinates());
    addParsing("json/parse/unlike", JsonTexts::dictionaries(/*count=*/5'000, /*members=*/12));
    addParsing("json/parse/sign-up", JsonTexts::signUpAnswer());
    addWriting("json/write/posts", JsonTexts::posts());
    addWriting("json/write/catalog", JsonTexts::catalog());
    addWriting("json/write/coordinates", JsonTexts::coordinates());
    addRoundTrip("json/size/1KB", recordsOf, /*count=*/10, /*size=*/0);
    addRoundTrip("json/size/100KB", recordsOf, /*count=*/1'000, /*size=*/0);
    addRoundTrip("json/size/100MB", recordsOf, /*count=*/1'000'000, /*size=*/0);
    addRoundTrip("json/depth/1", JsonTexts::nests, /*count=*/1'000'000, /*size=*/1);
    addRoundTrip("json/depth/1000000", JsonTexts::nests, /*count=*/1, /*size=*/1'000'000);
    addRoundTrip("json/depth/10000000", JsonTexts::nests, /*count=*/1, /*size=*/10'000'000);
    addRoundTrip("json/members/10", JsonTexts::dictionaries, /*count=*/100'000, /*size=*/10);
    addRoundTrip("json/members/1000000", JsonTexts::dictionaries, /*count=*/1, /*size=*/1'000'000);
    benchmark::Initialize(&count, arguments);
    for (int i = 1; i < count; ++i)
        addFile(QFileInfo(QString::fromLocal8Bit(arguments[i])));
    benchmark::RunSpecifiedBenchmarks();
}
