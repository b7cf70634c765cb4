#include "AnswerText.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <QStringDecoder>

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1StringView errorWord("Error");

bool isBlank(QChar c)
{
    return c == u'\t' || c.category() == QChar::Separator_Space;
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
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    const bool isNegative = text.starts_with('-');
    if (isNegative || text.starts_with('+'))
        text.remove_prefix(1);
    using Limits = std::numeric_limits<qint32>;
    quint32 digits = 0; // unsigned, for which no further sign is read
    if (std::from_chars(text.data(), text.data() + text.size(), digits).ec == std::errc::result_out_of_range)
        digits = std::numeric_limits<quint32>::max();
    const qint64 value = isNegative ? -qint64(digits) : qint64(digits);
    return static_cast<qint32>(std::clamp<qint64>(value, Limits::min(), Limits::max()));
}
