#include "AnswerText.h"

#include <algorithm>
#include <limits>
#include <QStringDecoder>

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1StringView errorWord("Error");

bool isBlank(QChar c)
{
    return c == u'\t' || c.category() == QChar::Separator_Space;
}

bool isSpace(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// List answers can be large and are XML nearly always: they are decoded only if they might be the word.
std::optional<QString> textWithoutMarkup(const QByteArray &answer)
{
    return answer.contains('<') ? std::nullopt : utf8Text(answer);
}

} // namespace

std::optional<QString> utf8Text(const QByteArray &answer)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder.decode(answer);
    if (decoder.hasError())
        return std::nullopt;
    return text;
}

std::optional<QString> asciiText(const QByteArray &answer)
{
    const auto isAscii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
    if (!std::all_of(answer.cbegin(), answer.cend(), isAscii))
        return std::nullopt;
    return QString::fromLatin1(answer);
}

QString withoutBlanksAround(const QString &text)
{
    const auto first = std::find_if_not(text.cbegin(), text.cend(), isBlank);
    const auto last = std::find_if_not(text.crbegin(), std::make_reverse_iterator(first), isBlank).base();
    if (last - first == text.size())
        return text;
    return text.sliced(first - text.cbegin(), last - first);
}

bool isErrorAnswer(const QByteArray &answer)
{
    const std::optional<QString> text = textWithoutMarkup(answer);
    return text && *text == errorWord;
}

bool isErrorAnswerAmongBlanks(const QByteArray &answer)
{
    const std::optional<QString> text = textWithoutMarkup(answer);
    return text && withoutBlanksAround(*text) == errorWord;
}

qint32 leadingInteger(std::string_view text)
{
    const char *at = text.data();
    const char *const end = at + text.size();
    while (at != end && isSpace(*at))
        ++at;
    const bool isNegative = at != end && *at == '-';
    if (at != end && (*at == '-' || *at == '+'))
        ++at;
    constexpr qint64 limit = qint64(std::numeric_limits<qint32>::max()) + 1;
    qint64 value = 0;
    for (; at != end && isDigit(*at) && value < limit; ++at)
        value = value * 10 + (*at - '0');
    value = isNegative ? std::max(-value, -limit) : std::min(value, limit - 1);
    return static_cast<qint32>(value);
}
