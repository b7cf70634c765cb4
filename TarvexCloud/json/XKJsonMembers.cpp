#include "XKJsonMembers.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <QRandomGenerator>
#include <stdexcept>

namespace {

// With so many, comparing each key with each other one is faster than hashing them.
constexpr std::size_t fewMembers = 8;

bool isText(const XKJsonNode &key)
{
    return key.kind() == XKJsonKind::String || key.kind() == XKJsonKind::Decimal;
}

bool isSameKey(const XKJsonNode &key, const XKJsonNode &other)
{
    if (key.head != other.head) // another kind or length
        return false;
    if (isText(key)) // mostly they differ soon
        return std::mismatch(key.text, key.text + key.length(), other.text).first == key.text + key.length();
    return key.kind() == XKJsonKind::Double ? key.real == other.real : key.integer == other.integer;
}

// Four units a multiplication. What they meet is secret, so that nobody can choose keys that all fall into
// one slot.
std::size_t hashOf(const XKJsonNode &key)
{
    static const quint64 secret = QRandomGenerator::system()->generate64() | 1;
    quint64 hash = secret ^ key.head;
    const auto meet = [&hash](quint64 bits) {
        const auto product = __uint128_t(hash ^ bits) * secret;
        hash = static_cast<quint64>(product) ^ static_cast<quint64>(product >> 64);
    };
    quint64 bits = std::bit_cast<quint64>(key.integer);
    if (key.kind() == XKJsonKind::Double)
        bits = std::bit_cast<quint64>(key.real + 0.0); // of two zeros one
    if (isText(key)) {
        const char16_t *c = key.text;
        const char16_t *const end = c + key.length();
        for (; end - c > 4; c += 4, meet(bits))
            std::memcpy(&bits, c, sizeof(bits));
        if (key.length() >= 4) // the last four may overlap those before
            std::memcpy(&bits, end - 4, sizeof(bits));
        else
            for (bits = 0; c != end; ++c)
                bits = bits << 16 | *c;
    }
    meet(bits);
    return hash;
}

using Slot = quint32; // the position of a member plus one, or 0

/// At least twice as many as there are members.
std::size_t slotsFor(std::size_t count)
{
    return count > fewMembers ? 2 * std::bit_ceil(count) : 0;
}

/// The slot of a key among those in front of so many members, or the free one where it belongs.
Slot &slotOf(const XKJsonNode &key, const XKJsonNode *members, std::size_t count)
{
    const std::size_t slotCount = slotsFor(count);
    Slot *const slots = reinterpret_cast<Slot *>(const_cast<XKJsonNode *>(members)) - slotCount;
    std::size_t place = hashOf(key);
    while (slots[place &= slotCount - 1] != 0 && !isSameKey(members[2 * (slots[place] - 1)], key))
        ++place;
    return slots[place];
}

Slot findAmongFew(const XKJsonNode &key, const XKJsonNode *members, std::size_t count)
{
    for (Slot slot = 1; slot <= count; ++slot)
        if (isSameKey(members[2 * (slot - 1)], key))
            return slot;
    return 0;
}

} // namespace

std::size_t XKJsonMembers::indexBytes(std::size_t count)
{
    if (count > std::numeric_limits<Slot>::max() / 2) // their nodes take 64 GB by then
        throw std::length_error("too many members");
    return slotsFor(count) * sizeof(Slot);
}

std::size_t XKJsonMembers::index(XKJsonNode *members, std::size_t count, std::size_t indexed)
{
    if (indexed == 0)
        std::fill_n(reinterpret_cast<Slot *>(members) - slotsFor(count), slotsFor(count), 0);
    std::size_t kept = indexed;
    for (std::size_t i = indexed; i < count; ++i) {
        const XKJsonNode *const member = members + 2 * i;
        Slot few = count <= fewMembers ? findAmongFew(*member, members, kept) : 0;
        Slot &slot = count <= fewMembers ? few : slotOf(*member, members, count);
        if (slot != 0) {
            members[2 * slot - 1] = member[1];
            continue;
        }
        if (kept != i) // only behind a repeated key
            std::copy_n(member, 2, members + 2 * kept);
        slot = static_cast<Slot>(++kept);
    }
    return kept == count ? kept : index(members, kept); // with fewer the index lies elsewhere
}

const XKJsonNode *XKJsonMembers::find(const XKJsonNode &dictionary, const XKJsonNode &key)
{
    const std::size_t count = dictionary.length();
    const Slot slot = count <= fewMembers ? findAmongFew(key, dictionary.items, count)
                                          : slotOf(key, dictionary.items, count);
    return slot ? dictionary.items + 2 * slot - 1 : nullptr;
}
