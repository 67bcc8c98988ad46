// SPDX-License-Identifier: Apache-2.0

#include "damage.h"

#include <numeric>

namespace {

constexpr const char *NAMES[DAMAGES] = {"flipped", "cut", "repeated", "late", "empty", "too long", "foreign"};

}  // namespace

uint64_t &DamageCount::operator[](Damage damage)
{
    return counts_[static_cast<size_t>(damage)];
}

uint64_t DamageCount::operator[](Damage damage) const
{
    return counts_[static_cast<size_t>(damage)];
}

bool DamageCount::operator==(const DamageCount &other) const
{
    return counts_ == other.counts_;
}

uint64_t DamageCount::Sum() const
{
    return std::accumulate(counts_.begin(), counts_.end(), uint64_t{0});
}

std::string DamageCount::String() const
{
    std::string kinds;
    for (size_t i = 0; i < counts_.size(); ++i) {
        if (counts_[i] > 0) {
            kinds += (kinds.empty() ? " (" : ", ") + std::to_string(counts_[i]) + " " + NAMES[i];
        }
    }
    return std::to_string(Sum()) + kinds + (kinds.empty() ? "" : ")");
}
