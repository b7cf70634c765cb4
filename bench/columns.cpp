// Goals out of their XML answer, against an expat pass that only counts and against QXmlStreamReader making
// the same records. The counter peak_per_input_byte is the memory used beyond the answer itself.

#include "AnswerRecords.h"
#include "AnswerText.h"
#include "Escaping.h"
#include "PeakMemory.h"

#include <benchmark/benchmark.h>
#include <expat.h>
#include <QXmlStreamReader>
#include <string>

namespace {

QByteArray answerWith(int goals)
{
    const QByteArrayList names = {"Run five kilometres twice a week",
                                  "Read a book a month{_c_} at least",
                                  "Call mother {_amp_} father",
                                  "Выучить сто слов",
                                  "Save 10{_prcnt_} of what comes in{_d_}",
                                  "Sleep before eleven"};
    QByteArray xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<goals>\n";
    for (int i = 0; i < goals; ++i) {
        xml += "<goal><id>" + QByteArray::number(1'000'000 + i) + "</id><name>" + names[i % names.size()] +
               "</name><area>" + QByteArray::number(i % 8 + 1) + "</area><priority>" +
               QByteArray::number(i % 10) + "</priority><checked>" + (i % 3 ? "n" : "y") +
               "</checked></goal>\n";
    }
    return xml + "</goals>\n";
}

TVXGoalList readByColumns(const QByteArray &xml)
{
    TVXGoalList goals;
    appendGoalsOfAllAreas(xml, goals);
    return goals;
}

TVXGoalList readByStreamReader(const QByteArray &xml)
{
    std::vector<qint32> ids;
    std::vector<qint32> areas;
    std::vector<qint32> priorities;
    std::vector<QString> names;
    std::vector<bool> checks;
    QXmlStreamReader reader(xml);
    reader.setNamespaceProcessing(false);
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement)
            continue;
        const QStringView element = reader.qualifiedName();
        if (element == u"id")
            ids.push_back(reader.readElementText().toInt());
        else if (element == u"name")
            names.push_back(unescapedFromWire(reader.readElementText()));
        else if (element == u"area")
            areas.push_back(reader.readElementText().toInt());
        else if (element == u"priority")
            priorities.push_back(reader.readElementText().toInt());
        else if (element == u"checked")
            checks.push_back(reader.readElementText() == u"y");
    }
    TVXGoalList goals;
    goals.reserve(ids.size());
    for (std::size_t i = 0; i < ids.size(); ++i) {
        auto goal = std::make_shared<TVXGoal>();
        goal->setIdOfGoal(ids[i]);
        goal->setNameOfGoal(names[i]);
        goal->setIdOfArea(areas[i]);
        goal->setPriorityOfGoal(priorities[i]);
        goal->setIsChecked(checks[i]);
        goals.push_back(std::move(goal));
    }
    return goals;
}

struct Counts
{
    std::size_t started = 0;
    std::size_t ended = 0;
    std::size_t characters = 0;
};

/// In one call, which is its fastest way.
Counts countByExpat(const QByteArray &xml)
{
    Counts counts;
    const XML_Parser parser = XML_ParserCreate(nullptr);
    XML_SetUserData(parser, &counts);
    XML_SetElementHandler(
        parser, [](void *data, const char *, const char **) { ++static_cast<Counts *>(data)->started; },
        [](void *data, const char *) { ++static_cast<Counts *>(data)->ended; });
    XML_SetCharacterDataHandler(parser, [](void *data, const char *, int length) {
        static_cast<Counts *>(data)->characters += static_cast<std::size_t>(length);
    });
    XML_Parse(parser, xml.constData(), static_cast<int>(xml.size()), /*isFinal=*/1);
    XML_ParserFree(parser);
    return counts;
}

/// Peak resident memory that the reading adds in a process of its own, in bytes per byte of the answer.
double peakPerInputByte(const QByteArray &xml)
{
    const QByteArray small = answerWith(/*goals=*/1);
    const auto read = [](const QByteArray &answer) { benchmark::DoNotOptimize(readByColumns(answer)); };
    return peakMemoryOf([&] { read(small); }, [&] { read(xml); }) / static_cast<double>(xml.size());
}

template<typename Read>
void run(benchmark::State &state, const QByteArray &xml, Read read)
{
    for (auto _ : state) {
        auto result = read(xml);
        benchmark::DoNotOptimize(result);
        state.PauseTiming(); // reading is measured, not letting go of what was read
        result = {};
        state.ResumeTiming();
    }
    state.SetBytesProcessed(state.iterations() * xml.size());
}

void add(const std::string &name, const QByteArray &xml, double peak)
{
    benchmark::RegisterBenchmark((name + "/ours").c_str(), [xml, peak](benchmark::State &state) {
        run(state, xml, readByColumns);
        state.counters["peak_per_input_byte"] = peak;
    });
    benchmark::RegisterBenchmark((name + "/peer-expat-counting").c_str(),
                                 [xml](benchmark::State &state) { run(state, xml, countByExpat); });
    benchmark::RegisterBenchmark((name + "/peer-QXmlStreamReader").c_str(),
                                 [xml](benchmark::State &state) { run(state, xml, readByStreamReader); });
}

} // namespace

int main(int count, char **arguments)
{
    const QByteArray large = answerWith(/*goals=*/100'000);
    const double peak = peakPerInputByte(large);
    add("columns/100000-goals", large, peak);
    add("columns/20-goals", answerWith(/*goals=*/20), /*peak=*/0);
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
}
