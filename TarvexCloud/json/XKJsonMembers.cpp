#include "XKJsonMembers.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <QRandomGenerator>

namespace {

constexpr std::size_t fewMembers = 4;
constexpr int quickHashBits = 11;
constexpr std::size_t quickHashes = std::size_t(1) << quickHashBits;

bool sameText(const XKJsonNode &key, const XKJsonNode &other)
{
    return key.length() == other.length() &&
           std::memcmp(key.text, other.text, key.length() * sizeof(char16_t)) == 0;
}

// Good enough to tell the few keys of a small dictionary apart, and no more than two loads.
std::size_t quickHash(const XKJsonNode &key)
{
    const std::size_t length = key.length();
    quint64 first = 0;
    quint64 last = 0;
    if (length >= 4) {
        std::memcpy(&first, key.text, sizeof(first));
        std::memcpy(&last, key.text + length - 4, sizeof(last));
    } else if (length > 0) {
        first = key.text[0] | quint64(key.text[length / 2]) << 16 | quint64(key.text[length - 1]) << 32;
    }
    return static_cast<std::size_t>((first * 3 + last + length) * 0x9E3779B97F4A7C15u >>
                                    (64 - quickHashBits));
}

// A key of the first `count` members, or null.
XKJsonNode *findLinearly(XKJsonNode *members, std::size_t count, const XKJsonNode &key)
{
    for (XKJsonNode *member = members; member != members + 2 * count; member += 2)
        if (sameText(*member, key))
            return member;
    return nullptr;
}

// Whether all keys of a few members differ already in their lengths, or in their first units.
bool differAtSight(const XKJsonNode *members, std::size_t count)
{
    for (std::size_t i = 1; i < count; ++i)
        for (std::size_t j = 0; j < i; ++j) {
            const XKJsonNode &key = members[2 * i];
            const XKJsonNode &other = members[2 * j];
            if (key.length() == other.length() && *key.text == *other.text)
                return false;
        }
    return true;
}

std::size_t mergedSmall(XKJsonNode *members, std::size_t count)
{
    std::array<quint64, quickHashes / 64> seen{};
    std::size_t kept = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const XKJsonNode &key = members[2 * i];
        const std::size_t hash = quickHash(key);
        quint64 &word = seen[hash / 64];
        const quint64 bit = quint64(1) << hash % 64;
        if (Q_UNLIKELY(word & bit)) {
            if (XKJsonNode *const earlier = findLinearly(members, kept, key)) {
                earlier[1] = members[2 * i + 1];
                continue;
            }
        }
        word |= bit;
        if (Q_UNLIKELY(kept != i))
            std::copy_n(members + 2 * i, 2, members + 2 * kept);
        ++kept;
    }
    return kept;
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
    quint64 of(QStringView key) const
    {
        const char16_t *units = key.utf16();
        const auto length = static_cast<std::size_t>(key.size());
        quint64 hash = m_start ^ length;
        if (length < 4) {
            for (const char16_t *const end = units + length; units != end; ++units)
                hash = (hash ^ *units) << 16 | hash >> 48;
            return folded(folded(hash ^ m_even, m_odd), m_even);
        }
        const char16_t *const last = units + length - 4;
        for (; last - units > 4; units += 8)
            hash = folded(fourUnits(units) ^ hash ^ m_even, fourUnits(units + 4) ^ m_odd);
        return folded(folded(fourUnits(std::min(units, last)) ^ hash ^ m_even, fourUnits(last) ^ m_odd),
                      m_even);
    }

private:
    explicit Hash(QRandomGenerator &random)
        : m_start(random.generate64()), m_even(random.generate64() | 1), m_odd(random.generate64() | 1)
    {
    }

    quint64 m_start;
    quint64 m_even;
    quint64 m_odd;
};

/// The slots of a dictionary. One is zero, or the position of a member plus one in its low bits and bits of
/// the key's hash above, which mostly tell whether the member is worth a look.
class Index
{
public:
    using Slot = quint64;

    Index(Slot *slots, std::size_t count) : m_slots(slots), m_count(count) {}

    static std::size_t slotsFor(std::size_t members) { return members + members / 2; }

    void prefetch(quint64 hash) const { __builtin_prefetch(m_slots + first(hash), /*rw=*/1); }
    /// The slot of that key, or the free one where it belongs.
    Slot &find(quint64 hash, QStringView key, const XKJsonNode *members) const
    {
        std::size_t slot = first(hash);
        while (m_slots[slot] != 0) {
            const bool mayMatch = ((m_slots[slot] ^ slotOf(hash, /*position=*/0)) & ~positionMask) == 0;
            if (mayMatch && members[2 * positionIn(m_slots[slot])].view() == key)
                break;
            slot = slot + 1 == m_count ? 0 : slot + 1;
        }
        return m_slots[slot];
    }
    static Slot slotOf(quint64 hash, std::size_t position) { return hash << positionBits | position; }
    static std::size_t positionIn(Slot slot) { return (slot & positionMask) - 1; }

private:
    static constexpr int positionBits = 40;
    static constexpr Slot positionMask = (Slot(1) << positionBits) - 1;

    std::size_t first(quint64 hash) const { return static_cast<std::size_t>(Wide(hash) * m_count >> 64); }

    Slot *m_slots;
    std::size_t m_count;
};

// Hashes some members ahead, so that their slots are on the way from memory while others are looked at.
std::size_t mergedByIndex(XKJsonNode *members, std::size_t count, const Index &index)
{
    constexpr std::size_t ahead = 16;
    const Hash &hash = Hash::secret();
    std::array<quint64, ahead> hashes{};
    const auto lookAt = [&](std::size_t i) {
        hashes[i % ahead] = hash.of(members[2 * i].view());
        index.prefetch(hashes[i % ahead]);
    };
    for (std::size_t i = 0; i < std::min(ahead, count); ++i)
        lookAt(i);
    std::size_t kept = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const XKJsonNode *const member = members + 2 * i;
        const quint64 hashOfMember = hashes[i % ahead];
        if (i + ahead < count)
            lookAt(i + ahead);
        Index::Slot &slot = index.find(hashOfMember, member->view(), members);
        if (Q_UNLIKELY(slot != 0)) {
            members[2 * Index::positionIn(slot) + 1] = member[1];
            continue;
        }
        if (Q_UNLIKELY(kept != i))
            std::copy_n(member, 2, members + 2 * kept);
        slot = Index::slotOf(hashOfMember, ++kept);
    }
    return kept;
}

} // namespace

XKJsonNode XKJsonMembers::dictionaryOf(XKJsonNode *members, std::size_t count, XKJsonArena &arena,
                                       bool mayRepeat)
{
    if (mayRepeat && count > 1 && (count > fewMembers || !differAtSight(members, count)))
        count = mergedSmall(members, count);
    return XKJsonNode(XKJsonKind::Dictionary, arena.copy(members, 2 * count), count, XKJsonNode::NoFlag);
}

XKJsonNode XKJsonMembers::indexedDictionaryOf(XKJsonNode *members, std::size_t count, XKJsonArena &arena)
{
    const std::size_t slotCount = Index::slotsFor(count);
    auto *const slots = static_cast<Index::Slot *>(arena.allocate(slotCount * sizeof(Index::Slot)));
    std::fill_n(slots, slotCount, 0);
    members[-1] = XKJsonNode(XKJsonKind::None, slotCount);
    members[-1].index = slots;
    count = mergedByIndex(members, count, Index(slots, slotCount));
    return XKJsonNode(XKJsonKind::Dictionary, members, count, XKJsonNode::Indexed);
}

const XKJsonNode *XKJsonMembers::find(const XKJsonNode &dictionary, QStringView key)
{
    const XKJsonNode *const members = dictionary.items;
    const std::size_t count = dictionary.length();
    if (!dictionary.is(XKJsonNode::Indexed)) {
        for (std::size_t i = 0; i < count; ++i)
            if (members[2 * i].view() == key)
                return members + 2 * i + 1;
        return nullptr;
    }
    const Index index(members[-1].index, members[-1].length());
    const Index::Slot found = index.find(Hash::secret().of(key), key, members);
    return found ? members + 2 * Index::positionIn(found) + 1 : nullptr;
}
