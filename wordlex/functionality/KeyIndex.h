#pragma once
#include <tsl/robin_map.h>

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <unordered_map>

namespace lexon_private {

// How both stores find a key: a flat hash table from the hash of a key (KeyHash.h) to its entry.
// The caller compares the key itself, because different keys may have equal hashes.
//
// Several entries may have the same hash: equal keys, or keys whose hashes are equal by chance.
// They form a ring in the order of the search. Rings are rare, so they are stored apart: an entry
// that is alone with its hash has none.
//
// Ref:    the store's name for an entry: a pointer or a number of 32 bits.
// Owns:   only its tables; the entries are the store's.
// Cost:   a search takes the same time for any number of entries, plus one step for every entry
//         before it in its ring. Putting and removing take constant time.
// Memory: when it runs out, the index is as before. Remove needs none.
template <class Ref>
class KeyIndex {
public:
    KeyIndex() { firsts.max_load_factor(0.8F); }  // fuller than the library's: it fits more caches

    // The first entry under the hash, and the one after `entry`, which is under it.
    std::optional<Ref> First(std::uint32_t hash) const {
        const auto found = firsts.find(hash);
        return found == firsts.end() ? std::nullopt : std::optional(Load(found->second));
    }
    std::optional<Ref> Next(std::uint32_t hash, Ref entry) const {
        return rings.empty() ? std::nullopt : NextInRing(hash, entry);
    }

    // Makes room, so that putting so many entries moves no others.
    void Reserve(std::size_t more) {
        const std::size_t count = firsts.size() + more;
        const auto room = static_cast<double>(firsts.bucket_count()) *
                          static_cast<double>(firsts.max_load_factor());
        if (static_cast<double>(count) > room) firsts.reserve(count);
    }

    // Put the entry before or after the others under its hash. An entry that is already there keeps
    // its place.
    void PutFirst(std::uint32_t hash, Ref entry) {
        if (Append(hash, entry)) firsts.find(hash).value() = Store(entry);
    }
    void PutLast(std::uint32_t hash, Ref entry) { Append(hash, entry); }

    // Puts the entry before the others under its hash and removes `old`, which is one of them.
    void Replace(std::uint32_t hash, Ref old, Ref entry) {
        if (rings.empty()) {
            firsts.find(hash).value() = Store(entry);
        } else {
            PutFirst(hash, entry);
            Remove(hash, old);
        }
    }

    // Does nothing when the entry is not there.
    void Remove(std::uint32_t hash, Ref entry) noexcept {
        const auto found = firsts.find(hash);
        if (found == firsts.end()) return;
        const auto member = rings.find({hash, entry});
        const bool isFirst = Load(found->second) == entry;
        if (member == rings.end()) {
            if (isFirst) firsts.erase(found);
            return;
        }
        const Neighbours around = member->second;
        rings.erase(member);
        if (isFirst) found.value() = Store(around.next);
        if (around.next == around.previous) {  // which is now alone
            rings.erase({hash, around.next});
        } else {
            rings.find({hash, around.previous})->second.next = around.next;
            rings.find({hash, around.next})->second.previous = around.previous;
        }
    }

private:
    // A Ref with only the alignment of a hash, so that both are close together.
    using Stored = std::array<std::uint32_t, sizeof(Ref) / sizeof(std::uint32_t)>;
    static Stored Store(Ref entry) noexcept { return std::bit_cast<Stored>(entry); }
    static Ref Load(const Stored& stored) noexcept { return std::bit_cast<Ref>(stored); }

    struct Member {
        std::uint32_t hash;
        Ref entry;
        bool operator==(const Member&) const = default;
    };
    struct HashOfMember {
        std::size_t operator()(const Member& member) const noexcept {
            return std::hash<Ref>()(member.entry) ^ member.hash;
        }
    };
    struct Neighbours {
        Ref previous;  // of the first entry: the last one
        Ref next;      // of the last entry: the first one
    };

    std::optional<Ref> NextInRing(std::uint32_t hash, Ref entry) const {
        const auto member = rings.find({hash, entry});
        if (member == rings.end() || member->second.next == First(hash)) return std::nullopt;
        return member->second.next;
    }

    // Puts the entry at the end of its ring. False when it is alone or was already there.
    bool Append(std::uint32_t hash, Ref entry) {
        const auto [found, alone] = firsts.try_emplace(hash, Store(entry));
        if (alone) return false;
        const Ref first = Load(found->second);
        if (first == entry || rings.contains({hash, entry})) return false;
        const auto [ring, isNew] = rings.try_emplace({hash, first}, Neighbours{first, first});
        const Ref last = ring->second.previous;
        try {
            rings.try_emplace({hash, entry}, Neighbours{last, first});
        } catch (...) {
            if (isNew) rings.erase({hash, first});
            throw;
        }
        rings.find({hash, last})->second.next = entry;
        rings.find({hash, first})->second.previous = entry;
        return true;
    }

    tsl::robin_map<std::uint32_t, Stored> firsts;
    std::unordered_map<Member, Neighbours, HashOfMember> rings;
};

}  // namespace lexon_private
