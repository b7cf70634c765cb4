#pragma once

#include "XKJsonArena.h"

/// The members of a dictionary that was read: each key, a string, and its value in turn.
namespace XKJsonMembers {
// Of several members with one key the first keeps its place and the last its value.

/// Copies a few members into the arena. Whether their keys may repeat must be told.
XKJsonNode dictionaryOf(XKJsonNode *members, std::size_t count, XKJsonArena &arena, bool mayRepeat);
/// From so many members on a dictionary carries an index of its keys.
constexpr std::size_t indexedFrom = 65;
/// Makes a dictionary of members that are in the arena already. The node in front of them must be free: it
/// will tell of the index.
XKJsonNode indexedDictionaryOf(XKJsonNode *members, std::size_t count, XKJsonArena &arena);
/// The value under a key of such a dictionary; null if it has no such key.
const XKJsonNode *find(const XKJsonNode &dictionary, QStringView key);
} // namespace XKJsonMembers
