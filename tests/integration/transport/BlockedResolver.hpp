#pragma once

namespace ZAK::Tests {

/// While it is told so, the look-up of `blocked.test` hangs, as that of a name whose servers do not answer; otherwise
/// the name stands for 127.0.0.1. (At all times, `two.test` stands for 127.0.0.2 and 127.0.0.1.) There is no need to
/// wait for the look-ups to end: that is the point.
void blockResolver(bool blocks);
/// Look-ups that hang now.
[[nodiscard]] int blockedLookUps();

}  // namespace ZAK::Tests
