#include "Escaping.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <QVarLengthArray>

namespace {

struct Token
{
    char character;
    std::string_view word; // between "{_" and "_}"
};

constexpr std::array<Token, 19> tokens = {{
    {'?', "quest"}, {']', "cbc"},  {'[', "cbo"},  {'&', "amp"}, {':', "dp"},    {';', "dc"},  {'.', "d"},
    {',', "c"},     {'`', "bq1"},  {'>', "tbc"},  {'<', "tbo"}, {'%', "prcnt"}, {'/', "slr"}, {'\\', "sll"},
    {'^', "v"},     {'$', "buks"}, {'@', "woof"}, {'~', "-"},   {'|', "l"},
}};

constexpr std::size_t asciiCount = 128;
constexpr std::size_t braceCount = 4; // "{_" and "_}"
constexpr std::size_t longestWord = 5;
constexpr std::size_t longestToken = longestWord + braceCount;
constexpr qsizetype slack = longestToken; // a token is copied in full, beyond its end

// A token as it is copied: always in full, of which the length counts.
struct WireToken
{
    std::array<char16_t, longestToken> text{};
    qsizetype length = 1;
};

// Characters that no token stands for have length 1.
constexpr std::array<WireToken, asciiCount> wireTokens = [] {
    std::array<WireToken, asciiCount> table;
    for (const Token &token : tokens) {
        WireToken &entry = table[static_cast<unsigned char>(token.character)];
        std::size_t length = 0;
        for (const std::string_view piece : {std::string_view("{_"), token.word, std::string_view("_}")}) {
            for (const char c : piece)
                entry.text[length++] = static_cast<char16_t>(c);
        }
        entry.length = static_cast<qsizetype>(length);
    }
    return table;
}();

// How much longer a text gets by a character, in its own small table: it is walked for every text.
constexpr std::array<quint8, asciiCount> growths = [] {
    std::array<quint8, asciiCount> table{};
    for (std::size_t c = 0; c < asciiCount; ++c)
        table[c] = static_cast<quint8>(wireTokens[c].length - 1);
    return table;
}();

inline qsizetype growthOf(char16_t c)
{
    return c < asciiCount ? growths[c] : 0;
}

qsizetype growthOf(const QString &text)
{
    qsizetype growth = 0;
    for (const QChar c : text)
        growth += growthOf(c.unicode());
    return growth;
}

/// Moves `begin` behind the token it points at and returns the token's character; 0 if it is at none.
template<typename Char>
char takeToken(const Char *&begin, const Char *end)
{
    const auto left = static_cast<std::size_t>(end - begin);
    if (left < braceCount + 1 || begin[1] != Char('_'))
        return 0;
    const Char *word = begin + 2;
    const Char *wordEnd = std::find(word, word + std::min(left - 2, longestWord + 1), Char('_'));
    const auto length = static_cast<std::size_t>(wordEnd - word);
    if (length + braceCount > left || wordEnd[0] != Char('_') || wordEnd[1] != Char('}'))
        return 0;
    for (const Token &token : tokens) {
        if (token.word.size() == length && std::equal(token.word.begin(), token.word.end(), word)) {
            begin = wordEnd + 2;
            return token.character;
        }
    }
    return 0;
}

const char *findBrace(const char *begin, const char *end)
{
    const void *found = std::memchr(begin, '{', static_cast<std::size_t>(end - begin));
    return found ? static_cast<const char *>(found) : end;
}

const char16_t *findBrace(const char16_t *begin, const char16_t *end)
{
    const qsizetype index = QStringView(begin, end).indexOf(u'{');
    return index < 0 ? end : begin + index;
}

/// Copies text to `out` with its tokens replaced; the result is never longer. Returns its end.
template<typename Char>
Char *copyUnescaped(const Char *at, const Char *end, Char *out)
{
    while (at != end) {
        const Char *brace = findBrace(at, end);
        out = std::copy(at, brace, out);
        at = brace;
        if (at == end)
            break;
        const char character = takeToken(at, end);
        *out++ = character ? static_cast<Char>(character) : *at++;
    }
    return out;
}

} // namespace

QString escapedForWire(const QString &userText)
{
    const qsizetype growth = growthOf(userText);
    if (growth == 0)
        return userText;
    QString wireText(userText.size() + growth + slack, Qt::Uninitialized);
    auto *out = reinterpret_cast<char16_t *>(wireText.data());
    for (const QChar c : userText) {
        const char16_t unit = c.unicode();
        if (growthOf(unit) == 0) {
            *out++ = unit;
            continue;
        }
        const WireToken &token = wireTokens[unit];
        std::memcpy(out, token.text.data(), sizeof(token.text));
        out += token.length;
    }
    wireText.truncate(userText.size() + growth);
    return wireText;
}

QString unescapedFromWire(const QString &wireText)
{
    const auto *begin = reinterpret_cast<const char16_t *>(wireText.constData());
    const char16_t *end = begin + wireText.size();
    if (findBrace(begin, end) == end)
        return wireText;
    QString userText(wireText.size(), Qt::Uninitialized);
    auto *out = reinterpret_cast<char16_t *>(userText.data());
    const qsizetype length = copyUnescaped(begin, end, out) - out;
    if (length == wireText.size())
        return wireText;
    userText.truncate(length);
    return userText;
}

QString unescapedFromUtf8Wire(std::string_view wireText)
{
    const char *begin = wireText.data();
    const char *end = begin + wireText.size();
    if (findBrace(begin, end) == end)
        return QString::fromUtf8(wireText);
    QVarLengthArray<char, 512> userText(static_cast<qsizetype>(wireText.size()));
    return QString::fromUtf8(userText.data(), copyUnescaped(begin, end, userText.data()) - userText.data());
}
