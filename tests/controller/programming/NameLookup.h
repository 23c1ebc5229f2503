#pragma once

/// Looking up names, for the whole test program, libcurl included: names that end in ".invalid" do
/// not exist, those that end in "slow.test" take three seconds and are then 127.0.0.1, all others
/// go the usual way.
namespace name_lookup {

/// How many lookups of "slow.test" itself are under way.
int Slow();

}  // namespace name_lookup
