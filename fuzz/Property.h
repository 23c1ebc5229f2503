#pragma once

#include <string_view>

/// What the fuzz targets share. Each target is one door into the product: a file that defines
/// `LLVMFuzzerTestOneInput`, feeds it whatever bytes it is given, and requires a property of what
/// comes of them. The same files are linked once with libFuzzer (here) and once with a main that
/// feeds them their corpus (tests/fuzz).
namespace fuzz {

/// Ends the process where `holds` is false, so that the input is kept. `property` is what should
/// have held.
void Require(bool holds, std::string_view property);
/// The same for two texts that should be equal; writes both.
void RequireEqual(std::string_view first, std::string_view second, std::string_view property);

/// A zone, a clock and a site that follow from the input alone, so that an input that was kept
/// gives the same again. The zone holds until the next one is made; the clock stands still.
class Surroundings {
 public:
  explicit Surroundings(std::string_view input);

  double Latitude() const { return latitude_; }
  double Longitude() const { return longitude_; }

 private:
  double latitude_;
  double longitude_;
};

}  // namespace fuzz
