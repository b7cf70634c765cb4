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

quint64 bitsOf(const XKJsonNode &number)
{
    return number.kind() == XKJsonKind::Double ? std::bit_cast<quint64>(number.real + 0.0) // of two zeros one
                                               : static_cast<quint64>(number.integer);
}

quint64 folded(quint64 left, quint64 right)
{
    const auto product = __uint128_t(left) * right;
    return static_cast<quint64>(product) ^ static_cast<quint64>(product >> 64);
}

// Four units a multiplication. What they meet is secret, so that nobody can choose keys that all fall into
// one slot.
inline quint64 hashOf(const XKJsonNode &key)
{
    static const quint64 secret = QRandomGenerator::system()->generate64();
    const quint64 factor = secret | 1;
    quint64 hash = std::rotl(secret, 32) ^ key.length();
    if (!isText(key))
        return folded(hash ^ bitsOf(key), factor);
    const char16_t *c = key.text;
    const char16_t *const end = c + key.length();
    quint64 units = 0; // the last four may overlap those before
    if (end - c < 4)
        for (; c != end; ++c)
            units = units << 16 | *c;
    for (; end - c > 4; c += 4, hash = folded(hash ^ units, factor))
        std::memcpy(&units, c, sizeof(units));
    if (end != c)
        std::memcpy(&units, end - 4, sizeof(units));
    return folded(hash ^ units, factor);
}

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

    /// Half as many again, in steps, and an even number for what lies behind.
    static std::size_t countFor(std::size_t members)
    {
        const std::size_t step = std::max<std::size_t>(std::bit_ceil(members) / 8, 4);
        return (members + step - 1) / step * step / 2 * 3;
    }

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
    std::size_t placeOf(quint64 hash) const { return (hash >> 32) * m_count >> 32; }

    const XKJsonNode *m_members;
    Slot m_positions; // the bits that tell of them
    std::size_t m_count;
    Slot *m_first;
};

void keep(XKJsonNode *members, std::size_t from, std::size_t to)
{
    if (from != to) // only behind a repeated key
        std::copy_n(members + 2 * from, 2, members + 2 * to);
}

// Some are hashed before they are looked up, so that their slots come from memory together.
std::size_t mergeMany(XKJsonNode *members, std::size_t count, std::size_t indexed)
{
    Slots slots(members, count);
    if (indexed == 0)
        slots.clear();
    std::array<quint64, 16> hashes;
    std::size_t kept = indexed;
    for (std::size_t first = indexed; first < count; first += hashes.size()) {
        const std::size_t end = std::min(first + hashes.size(), count);
        for (std::size_t i = first; i < end; ++i)
            slots.prefetch(hashes[i - first] = hashOf(members[2 * i]));
        for (std::size_t i = first; i < end; ++i) {
            Slots::Slot &slot = slots.find(hashes[i - first], members[2 * i]);
            if (slot != 0) {
                members[2 * slots.positionIn(slot) + 1] = members[2 * i + 1];
                continue;
            }
            slot = slots.slotOf(hashes[i - first], kept);
            keep(members, i, kept++);
        }
    }
    return kept;
}

XKJsonNode *findAmongFew(XKJsonNode *members, std::size_t count, const XKJsonNode &key)
{
    XKJsonNode *const end = members + 2 * count;
    while (members != end && !isSameKey(*members, key))
        members += 2;
    return members == end ? nullptr : members;
}

std::size_t mergeFew(XKJsonNode *members, std::size_t count)
{
    std::size_t kept = 0;
    for (std::size_t i = 0; i < count; ++i)
        if (XKJsonNode *const same = findAmongFew(members, kept, members[2 * i]))
            same[1] = members[2 * i + 1];
        else
            keep(members, i, kept++);
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
    return kept == count ? kept : index(members, kept); // with fewer it lies elsewhere
}

const XKJsonNode *XKJsonMembers::find(const XKJsonNode &dictionary, const XKJsonNode &key)
{
    auto *const members = const_cast<XKJsonNode *>(dictionary.items);
    const std::size_t count = dictionary.length();
    if (count <= fewMembers) {
        const XKJsonNode *const found = findAmongFew(members, count, key);
        return found ? found + 1 : nullptr;
    }
    const Slots slots(members, count);
    const Slots::Slot found = slots.find(hashOf(key), key);
    return found ? members + 2 * slots.positionIn(found) + 1 : nullptr;
}
