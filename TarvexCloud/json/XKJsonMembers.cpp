#include "XKJsonMembers.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <QHash>
#include <QRandomGenerator>

namespace {

// From here on a dictionary carries an index of its keys in front of its members:
//   slots, one node whose length is their number, members.
// A slot is zero, or the position of a member plus one in its low bits and bits of the key's hash above.
constexpr std::size_t indexedFrom = 65;
constexpr std::size_t fewMembers = 4;
constexpr int quickHashBits = 11;
constexpr std::size_t quickHashes = std::size_t(1) << quickHashBits;
constexpr int positionBits = 40;
constexpr quint64 positionMask = (quint64(1) << positionBits) - 1;

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

// The seed is secret, so that nobody can choose keys that all fall into one slot.
quint64 hashOf(QStringView key)
{
    static const std::size_t seed = QRandomGenerator::system()->generate64();
    return qHash(key, seed) * 0x9E3779B97F4A7C15u;
}

class Index
{
public:
    Index(const quint64 *slots, std::size_t count) : m_slots(slots), m_count(count) {}

    std::size_t firstSlot(quint64 hash) const
    {
        return static_cast<std::size_t>((hash >> 32) * m_count >> 32);
    }
    /// The slot of that key, or the free one where it belongs.
    std::size_t find(quint64 hash, QStringView key, const XKJsonNode *members) const
    {
        std::size_t slot = firstSlot(hash);
        while (m_slots[slot] != 0) {
            const bool mayMatch = ((m_slots[slot] ^ hash << positionBits) & ~positionMask) == 0;
            if (mayMatch && members[2 * ((m_slots[slot] & positionMask) - 1)].view() == key)
                break;
            slot = slot + 1 == m_count ? 0 : slot + 1;
        }
        return slot;
    }

private:
    const quint64 *m_slots;
    std::size_t m_count;
};

// Hashes some members ahead, so that their slots are on the way from memory while others are looked at.
constexpr std::size_t ahead = 16;

std::size_t fillIndex(const XKJsonNode *members, std::size_t count, quint64 *slots, std::size_t slotCount,
                      XKJsonNode *kept)
{
    const Index index(slots, slotCount);
    std::array<quint64, ahead> hashes{};
    std::size_t keptCount = 0;
    for (std::size_t i = 0; i < count + ahead; ++i) {
        const quint64 hash = hashes[i % ahead];
        if (i < count) {
            hashes[i % ahead] = hashOf(members[2 * i].view());
            __builtin_prefetch(slots + index.firstSlot(hashes[i % ahead]), /*rw=*/1);
        }
        if (i < ahead)
            continue;
        const XKJsonNode *const member = members + 2 * (i - ahead);
        quint64 &slot = slots[index.find(hash, member->view(), kept)];
        if (slot != 0) {
            kept[2 * ((slot & positionMask) - 1) + 1] = member[1];
            continue;
        }
        std::copy_n(member, 2, kept + 2 * keptCount);
        slot = (hash << positionBits) | ++keptCount;
    }
    return keptCount;
}

XKJsonNode indexed(const XKJsonNode *members, std::size_t count, XKJsonArena &arena)
{
    const std::size_t slotCount = count + count / 2;
    const std::size_t bytes = slotCount * sizeof(quint64) + (1 + 2 * count) * sizeof(XKJsonNode);
    auto *const slots = static_cast<quint64 *>(arena.allocate(bytes));
    std::fill_n(slots, slotCount, 0);
    auto *const kept = reinterpret_cast<XKJsonNode *>(slots + slotCount) + 1;
    kept[-1] = XKJsonNode(XKJsonKind::None, slotCount);
    const std::size_t keptCount = fillIndex(members, count, slots, slotCount, kept);
    return XKJsonNode(XKJsonKind::Dictionary, kept, keptCount, XKJsonNode::Indexed);
}

} // namespace

XKJsonNode XKJsonMembers::dictionaryOf(XKJsonNode *members, std::size_t count, XKJsonArena &arena)
{
    if (count >= indexedFrom)
        return indexed(members, count, arena);
    if (count > 1 && (count > fewMembers || !differAtSight(members, count)))
        count = mergedSmall(members, count);
    return XKJsonNode(XKJsonKind::Dictionary, arena.copy(members, 2 * count), count, XKJsonNode::NoFlag);
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
    const std::size_t slotCount = members[-1].length();
    const auto *const slots = reinterpret_cast<const quint64 *>(members - 1) - slotCount;
    const quint64 hash = hashOf(key);
    const quint64 found = slots[Index(slots, slotCount).find(hash, key, members)];
    return found ? members + 2 * ((found & positionMask) - 1) + 1 : nullptr;
}
