#pragma once

namespace ZAK::test {

/// While one exists, the look-up of `blocked.test` hangs, as that of a name whose servers do not answer; without one
/// the name stands for 127.0.0.1. (At all times, `two.test` stands for 127.0.0.2 and 127.0.0.1.) There is no need to
/// wait for the look-ups to end: that is the point.
class BlockedResolver {
 public:
  BlockedResolver();
  ~BlockedResolver();
  BlockedResolver(const BlockedResolver&) = delete;
  BlockedResolver& operator=(const BlockedResolver&) = delete;

  /// Lets all look-ups through from now on.
  static void release();
  /// Look-ups that hang now.
  [[nodiscard]] static int blocked();
};

}  // namespace ZAK::test
