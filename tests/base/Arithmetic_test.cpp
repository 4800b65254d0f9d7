#include "torva35/base/Arithmetic.h"

#include <gtest/gtest.h>

#include <cfenv>
#include <limits>

namespace TORVA35 {
namespace {

TEST(Arithmetic, RoundsToTheNearestWholeNumberInEveryMode) {
  constexpr Double kInfinity = std::numeric_limits<Double>::infinity();
  constexpr std::pair<Double, Double> kRows[] = {{0.5, 0},
                                                 {1.5, 2},
                                                 {2.5, 2},
                                                 {0.49999999999999994, 0},
                                                 {1.2, 1},
                                                 {1.8, 2},
                                                 {-0.5, 0},
                                                 {-1.5, -2},
                                                 {-2.5, -2},
                                                 {4503599627370495.5, 4503599627370496},
                                                 {kInfinity, kInfinity}};
  for (const int mode : {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
    std::fesetround(mode);
    for (const auto& [value, whole] : kRows) EXPECT_EQ(NearestWhole(value), whole) << value << " in mode " << mode;
  }
  std::fesetround(FE_TONEAREST);
}

}  // namespace
}  // namespace TORVA35
