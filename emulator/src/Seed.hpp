#pragma once

#include <zvapikit/emulator/EmulatorOptions.hpp>

namespace ZAK {

struct World;

/// Fills an empty world with the users of the options and, if they ask for it, the neighbours. The same options and
/// time give the same world.
void seed(World& world, const EmulatorOptions& options, Date now);

}  // namespace ZAK
