#pragma once

#include <QString>
#include <string_view>

/// User text to wire text: each of nineteen punctuation characters becomes its brace token ("&" is
/// "{_amp_}"). A text without any of them is returned as the same shared string, nothing allocated.
QString escapedForWire(const QString &userText);

/// Wire text to user text: each token becomes its character. Whatever else stands in braces stays; a text
/// without tokens is returned as the same shared string.
QString unescapedFromWire(const QString &wireText);

/// The same for text still in UTF-8, as answers bring it, in one go with its decoding.
QString unescapedFromUtf8Wire(std::string_view wireText);
