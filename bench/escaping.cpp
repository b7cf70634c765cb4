// Escaping and unescaping one kilobyte of text in which every twentieth character is special, against the
// plain way of nineteen sequential replacements in two forms each.

#include "Escaping.h"

#include <array>
#include <benchmark/benchmark.h>
#include <QStringList>

namespace {

struct Pair
{
    QChar character;
    QString asText;
    QString token;
    QByteArray latin1Token;
};

const std::array<Pair, 19> &pairs()
{
    static const auto made = [] {
        const QString characters = QStringLiteral("?][&:;.,`><%/\\^$@~|");
        const QStringList words =
            QStringLiteral("quest cbc cbo amp dp dc d c bq1 tbc tbo prcnt slr sll v buks "
                           "woof - l")
                .split(u' ');
        std::array<Pair, 19> result;
        for (int i = 0; i < characters.size(); ++i) {
            const QString token = QStringLiteral("{_%1_}").arg(words[i]);
            result[static_cast<std::size_t>(i)] = {characters[i], characters.mid(i, 1), token,
                                                   token.toLatin1()};
        }
        return result;
    }();
    return made;
}

QString userText()
{
    QString text;
    for (int i = 0; i < 1024; ++i)
        text +=
            i % 20 == 19 ? pairs()[static_cast<std::size_t>(i / 20 % 19)].character : QChar(u'a' + i % 26);
    return text;
}

QString plainText()
{
    return QString(1024, u'x');
}

QString escapedByCharacter(QString text)
{
    for (const Pair &pair : pairs())
        text.replace(pair.character, pair.token);
    return text;
}

QString escapedByText(QString text)
{
    for (const Pair &pair : pairs())
        text.replace(pair.asText, pair.token);
    return text;
}

QString unescapedByText(QString text)
{
    for (const Pair &pair : pairs())
        text.replace(pair.token, pair.asText);
    return text;
}

QString unescapedByUnits(QString text)
{
    for (const Pair &pair : pairs())
        text.replace(pair.token.constData(), pair.token.size(), &pair.character, /*alen=*/1);
    return text;
}

QString unescapedByLatin1(QString text)
{
    for (const Pair &pair : pairs())
        text.replace(QLatin1StringView(pair.latin1Token), pair.asText);
    return text;
}

template<QString (*convert)(const QString &), QString (*text)()>
void ours(benchmark::State &state)
{
    const QString input = text();
    for (auto _ : state)
        benchmark::DoNotOptimize(convert(input));
}

template<QString (*convert)(QString), QString (*text)()>
void peer(benchmark::State &state)
{
    const QString input = text();
    for (auto _ : state)
        benchmark::DoNotOptimize(convert(input));
}

QString wireText()
{
    return escapedByText(userText());
}

BENCHMARK(ours<escapedForWire, userText>)->Name("escape/1KB/ours");
BENCHMARK(peer<escapedByCharacter, userText>)->Name("escape/1KB/peer-19-replace-QChar");
BENCHMARK(peer<escapedByText, userText>)->Name("escape/1KB/peer-19-replace-QString");
BENCHMARK(ours<unescapedFromWire, wireText>)->Name("unescape/1KB/ours");
BENCHMARK(peer<unescapedByUnits, wireText>)->Name("unescape/1KB/peer-19-replace-QChar");
BENCHMARK(peer<unescapedByText, wireText>)->Name("unescape/1KB/peer-19-replace-QString");
BENCHMARK(peer<unescapedByLatin1, wireText>)->Name("unescape/1KB/peer-19-replace-Latin1");
BENCHMARK(ours<escapedForWire, plainText>)->Name("escape/1KB-plain/ours");
BENCHMARK(peer<escapedByCharacter, plainText>)->Name("escape/1KB-plain/peer-19-replace-QChar");
BENCHMARK(ours<unescapedFromWire, plainText>)->Name("unescape/1KB-plain/ours");
BENCHMARK(peer<unescapedByText, plainText>)->Name("unescape/1KB-plain/peer-19-replace-QString");

} // namespace

BENCHMARK_MAIN();
