#pragma once

#include "XKJsonNode.h"

/// The members of a dictionary: each key and its value in turn. A few are looked through; more have an index
/// of their keys, which lies in front of them in memory and is found by their number alone.
namespace XKJsonMembers {
/// The bytes that the index takes. It grows in steps, never down. @throws std::length_error
std::size_t indexBytes(std::size_t count);
/// Indexes members with room for the index in front of them, of which the first `indexed` are so already, and
/// gives the number that is left: of several members with one key the first keeps its place, the last its
/// value.
std::size_t index(XKJsonNode *members, std::size_t count, std::size_t indexed = 0);
/// The value under a key; null if there is no such key. Strings and numbers are the same key when they are
/// equal, containers and objects when they are the very same.
const XKJsonNode *find(const XKJsonNode &dictionary, const XKJsonNode &key);
} // namespace XKJsonMembers
