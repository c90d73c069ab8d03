#pragma once

#include <cstdint>

namespace physics
{
// Names one contact of one pair of shapes from step to step: the shapes' ids, smaller first, and the sub id
// that the pair function gives each of its contacts.
struct ContactID
{
    ContactID() = default;
    ContactID(std::uint32_t idA, std::uint32_t idB, std::uint32_t subId)
        : low(idA < idB ? idA : idB), high(idA < idB ? idB : idA), sub(subId),
          hash(low * 0x8DA6B343u + high * 0xD8163841u + sub * 0xCB1AB31Fu)
    {
    }

    bool operator==(const ContactID& o) const { return low == o.low && high == o.high && sub == o.sub; }
    bool operator!=(const ContactID& o) const { return !(*this == o); }

    struct Hasher
    {
        std::uint32_t operator()(const ContactID& id) const { return id.hash; }
    };

    std::uint32_t low = 0;
    std::uint32_t high = 0;
    std::uint32_t sub = 0;
    std::uint32_t hash = 0;
};

} // namespace physics
