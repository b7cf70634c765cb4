// The wire's escaping, both ways, against what it stands for: nineteen replacements, one after another.

#include "Escaping.h"
#include "Texts.h"

#include <QStringList>

namespace {

QString replaced(QString text, bool toTokens)
{
    static const QString characters = QStringLiteral("?][&:;.,`><%/\\^$@~|");
    static const QStringList words =
        QStringLiteral("quest cbc cbo amp dp dc d c bq1 tbc tbo prcnt slr sll v buks woof - l").split(u' ');
    for (qsizetype i = 0; i < characters.size(); ++i) {
        const QString token = QStringLiteral("{_") + words[i] + QStringLiteral("_}");
        if (toTokens)
            text.replace(characters[i], token);
        else
            text.replace(token, QString(characters[i]));
    }
    return text;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    const QString text = textOf({bytes, size});
    const QString escaped = escapedForWire(text);
    require(escaped == replaced(text, /*toTokens=*/true), "escaping is the nineteen replacements");
    const QString unescaped = unescapedFromWire(text);
    require(unescaped == replaced(text, /*toTokens=*/false), "unescaping is the nineteen replacements");
    require(unescapedFromWire(escaped) == unescaped, "escaping and unescaping loses nothing but tokens");
    const std::string_view utf8(reinterpret_cast<const char *>(bytes), size);
    const QString decoded = QString::fromUtf8(utf8.data(), static_cast<qsizetype>(size));
    require(unescapedFromUtf8Wire(utf8) == unescapedFromWire(decoded), "decoding and unescaping is one");
    return 0;
}
