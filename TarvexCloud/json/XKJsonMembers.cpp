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
// The slots of so many lie far away in memory: each is sent for before it is needed.
constexpr std::size_t manyMembers = 10'000, ahead = 16;

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
// one slot; where there are not many to fall, both ends of a key will do.
quint32 hashOf(const XKJsonNode &key, std::size_t count)
{
    const bool endsWillDo = count <= 64; // one more takes a larger index, made anew
    static const quint64 secret = QRandomGenerator::system()->generate64() | 1;
    quint64 hash = secret ^ key.head;
    const auto meet = [&hash](quint64 bits) {
        const auto product = __uint128_t(hash ^ bits) * secret;
        hash = static_cast<quint64>(product) ^ static_cast<quint64>(product >> 64);
    };
    const bool isReal = key.kind() == XKJsonKind::Double; // of its two zeros one counts
    auto bits = isReal ? std::bit_cast<quint64>(key.real + 0.0) : static_cast<quint64>(key.integer);
    if (isText(key)) {
        const char16_t *c = key.text;
        const char16_t *const end = c + key.length();
        for (; end - c > 4; c = endsWillDo ? end - 4 : c + 4, meet(bits))
            std::memcpy(&bits, c, sizeof(bits));
        if (key.length() >= 4) // the last four may overlap those before
            std::memcpy(&bits, end - 4, sizeof(bits));
        else
            for (bits = 0; c != end; ++c)
                bits = bits << 16 | *c;
    }
    meet(bits);
    return static_cast<quint32>(hash);
}

struct Slot
{
    quint32 hash;
    quint32 number; // of a member, counted from one; 0 if the slot is free
};

/// At least twice as many as there are members.
std::size_t slotsFor(std::size_t count)
{
    return count > fewMembers ? 2 * std::bit_ceil(count) : 0;
}

Slot *slotsOf(const XKJsonNode *members, std::size_t count)
{
    return reinterpret_cast<Slot *>(const_cast<XKJsonNode *>(members)) - slotsFor(count);
}

/// The slot of a key among those in front of so many members, or the free one where it belongs.
Slot &slotOf(const XKJsonNode &key, quint32 hash, const XKJsonNode *members, std::size_t count)
{
    Slot *const slots = slotsOf(members, count);
    const std::size_t last = slotsFor(count) - 1;
    std::size_t place = hash & last;
    for (; slots[place].number != 0; place = (place + 1) & last)
        if (slots[place].hash == hash && isSameKey(members[2 * slots[place].number - 2], key))
            break;
    return slots[place];
}

/// The number of a key among few members; 0 if it is not there.
quint32 findAmongFew(const XKJsonNode &key, const XKJsonNode *members, std::size_t count)
{
    for (quint32 number = 1; number <= count; ++number)
        if (isSameKey(members[2 * number - 2], key))
            return number;
    return 0;
}

} // namespace

std::size_t XKJsonMembers::indexBytes(std::size_t count)
{
    if (count > std::numeric_limits<quint32>::max() / 2) // their nodes take 64 GB by then
        throw std::length_error("too many members");
    return slotsFor(count) * sizeof(Slot);
}

std::size_t XKJsonMembers::index(XKJsonNode *members, std::size_t count, std::size_t indexed)
{
    const bool areFew = count <= fewMembers;
    if (indexed == 0)
        std::fill_n(slotsOf(members, count), slotsFor(count), Slot{});
    std::size_t kept = indexed;
    for (std::size_t i = indexed; i < count; ++i) {
        const XKJsonNode *const member = members + 2 * i;
        if (count > manyMembers && i + ahead < count)
            __builtin_prefetch(slotsOf(members, count) +
                               (hashOf(member[2 * ahead], count) & (slotsFor(count) - 1)));
        const quint32 hash = areFew ? 0 : hashOf(*member, count);
        Slot few{0, areFew ? findAmongFew(*member, members, kept) : 0};
        Slot &slot = areFew ? few : slotOf(*member, hash, members, count);
        if (slot.number != 0) {
            members[2 * slot.number - 1] = member[1];
            continue;
        }
        if (kept != i) // only behind a repeated key
            std::copy_n(member, 2, members + 2 * kept);
        slot = {hash, static_cast<quint32>(++kept)};
    }
    return kept == count ? kept : index(members, kept); // with fewer the index lies elsewhere
}

const XKJsonNode *XKJsonMembers::find(const XKJsonNode &dictionary, const XKJsonNode &key)
{
    const std::size_t count = dictionary.length();
    const std::size_t number = count <= fewMembers
                                   ? findAmongFew(key, dictionary.items, count)
                                   : slotOf(key, hashOf(key, count), dictionary.items, count).number;
    return number ? dictionary.items + 2 * number - 1 : nullptr;
}
