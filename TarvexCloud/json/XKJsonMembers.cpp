#include "XKJsonMembers.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
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
    if (key.length() != other.length() || key.kind() != other.kind())
        return false;
    if (isText(key)) // mostly they differ soon
        return std::mismatch(key.text, key.text + key.length(), other.text).first == key.text + key.length();
    return key.kind() == XKJsonKind::Double ? key.real == other.real : key.integer == other.integer;
}

using Wide = __uint128_t;

quint64 folded(quint64 left, quint64 right)
{
    const Wide product = Wide(left) * right;
    return static_cast<quint64>(product) ^ static_cast<quint64>(product >> 64);
}

quint64 fourUnits(const char16_t *units)
{
    quint64 four = 0;
    std::memcpy(&four, units, sizeof(four));
    return four;
}

// Sixteen bytes a multiplication. What they are multiplied with is secret, so that nobody can choose keys
// that all fall into one slot.
class Hash
{
public:
    static const Hash &secret()
    {
        static const Hash hash(*QRandomGenerator::system());
        return hash;
    }
    quint64 of(const XKJsonNode &key) const
    {
        if (isText(key))
            return ofText(key.text, key.length());
        if (key.kind() == XKJsonKind::Double)
            return mixed(std::bit_cast<quint64>(key.real + 0.0)); // which makes one of the two zeros
        return mixed(static_cast<quint64>(key.integer));
    }

private:
    explicit Hash(QRandomGenerator &random)
        : m_start(random.generate64()), m_even(random.generate64() | 1), m_odd(random.generate64() | 1)
    {
    }

    quint64 mixed(quint64 bits) const { return folded(folded(bits ^ m_start ^ m_even, m_odd), m_even); }
    quint64 ofText(const char16_t *units, std::size_t length) const
    {
        if (length < 4) {
            quint64 few = length;
            for (const char16_t *const end = units + length; units != end; ++units)
                few = few << 16 | *units;
            return mixed(few);
        }
        quint64 hash = m_start ^ length;
        const char16_t *const last = units + length - 4;
        for (; last - units > 4; units += 8)
            hash = folded(fourUnits(units) ^ hash ^ m_even, fourUnits(units + 4) ^ m_odd);
        return folded(folded(fourUnits(std::min(units, last)) ^ hash ^ m_even, fourUnits(last) ^ m_odd),
                      m_even);
    }

    quint64 m_start;
    quint64 m_even;
    quint64 m_odd;
};

/// The slots in front of many members. One is zero, or the position of a member plus one in its low bits and
/// bits of the key's hash above, which mostly tell whether the member is worth a look.
class Slots
{
public:
    using Slot = quint32;

    Slots(const XKJsonNode *members, std::size_t count)
        : m_members(members), m_positions(static_cast<Slot>(2 * std::bit_ceil(count) - 1)),
          m_count(countFor(count)),
          m_first(reinterpret_cast<Slot *>(const_cast<XKJsonNode *>(members)) - m_count)
    {
    }

    static std::size_t countFor(std::size_t members) { return std::bit_ceil(members) / 2 * 3; }

    void clear() { std::fill_n(m_first, m_count, 0); }
    void prefetch(quint64 hash) const { __builtin_prefetch(m_first + placeOf(hash), /*rw=*/1); }
    /// The slot of that key, or the free one where it belongs.
    Slot &find(quint64 hash, const XKJsonNode &key) const
    {
        std::size_t place = placeOf(hash);
        for (; m_first[place] != 0; place = place + 1 == m_count ? 0 : place + 1) {
            const bool mayMatch = ((m_first[place] ^ static_cast<Slot>(hash)) & ~m_positions) == 0;
            if (mayMatch && isSameKey(m_members[2 * positionIn(m_first[place])], key))
                break;
        }
        return m_first[place];
    }
    Slot slotOf(quint64 hash, std::size_t position) const
    {
        return (static_cast<Slot>(hash) & ~m_positions) | static_cast<Slot>(position + 1);
    }
    std::size_t positionIn(Slot slot) const { return (slot & m_positions) - 1; }

private:
    std::size_t placeOf(quint64 hash) const { return static_cast<std::size_t>(Wide(hash) * m_count >> 64); }

    const XKJsonNode *m_members;
    Slot m_positions; // the bits that tell of them
    std::size_t m_count;
    Slot *m_first;
};

void keep(XKJsonNode *members, std::size_t from, std::size_t to)
{
    if (from != to)
        std::copy_n(members + 2 * from, 2, members + 2 * to);
}

std::size_t mergeFew(XKJsonNode *members, std::size_t count)
{
    std::size_t kept = 0;
    for (std::size_t i = 0; i < count; ++i) {
        std::size_t same = 0;
        while (same < kept && !isSameKey(members[2 * same], members[2 * i]))
            ++same;
        if (same < kept)
            members[2 * same + 1] = members[2 * i + 1];
        else
            keep(members, i, kept++);
    }
    return kept;
}

// Hashes some members ahead, so that their slots are on the way from memory while others are looked at.
std::size_t mergeMany(XKJsonNode *members, std::size_t count, std::size_t indexed)
{
    constexpr std::size_t ahead = 16;
    const Hash &hash = Hash::secret();
    Slots slots(members, count);
    if (indexed == 0)
        slots.clear();
    std::array<quint64, ahead> hashes{};
    const auto lookAt = [&](std::size_t i) {
        hashes[i % ahead] = hash.of(members[2 * i]);
        slots.prefetch(hashes[i % ahead]);
    };
    for (std::size_t i = indexed; i < std::min(indexed + ahead, count); ++i)
        lookAt(i);
    std::size_t kept = indexed;
    for (std::size_t i = indexed; i < count; ++i) {
        const quint64 hashOfMember = hashes[i % ahead];
        if (i + ahead < count)
            lookAt(i + ahead);
        Slots::Slot &slot = slots.find(hashOfMember, members[2 * i]);
        if (slot != 0) {
            members[2 * slots.positionIn(slot) + 1] = members[2 * i + 1];
            continue;
        }
        slot = slots.slotOf(hashOfMember, kept);
        keep(members, i, kept++);
    }
    return kept;
}

} // namespace

std::size_t XKJsonMembers::indexBytes(std::size_t count)
{
    constexpr auto most = std::size_t(1)
                          << 30; // beyond, a slot could not tell where; nodes take 32 GB by then
    if (count > most)
        throw std::length_error("too many members");
    return count > fewMembers ? Slots::countFor(count) * sizeof(Slots::Slot) : 0;
}

std::size_t XKJsonMembers::index(XKJsonNode *members, std::size_t count, std::size_t indexed)
{
    if (count <= fewMembers)
        return mergeFew(members, count);
    const std::size_t kept = mergeMany(members, count, indexed);
    if (kept == count)
        return kept;
    return index(members, kept); // where the index lies and how large it is has changed
}

const XKJsonNode *XKJsonMembers::find(const XKJsonNode &dictionary, const XKJsonNode &key)
{
    const XKJsonNode *const members = dictionary.items;
    const std::size_t count = dictionary.length();
    if (count > fewMembers) {
        const Slots slots(members, count);
        const Slots::Slot found = slots.find(Hash::secret().of(key), key);
        return found ? members + 2 * slots.positionIn(found) + 1 : nullptr;
    }
    for (std::size_t i = 0; i < count; ++i)
        if (isSameKey(members[2 * i], key))
            return members + 2 * i + 1;
    return nullptr;
}
