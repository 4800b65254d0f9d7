#include "torva35/base/Numbers.h"

#include <gtest/gtest.h>

#include <cfenv>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "torva35/base/Arithmetic.h"

namespace TORVA35 {
namespace {

template <class Floating>
std::string Shortest(Floating value, Layout layout) {
  std::string text;
  AppendShortest(text, value, layout);
  return text;
}

TEST(Numbers, InEachLayout) {
  const auto all = [](Double value) {
    return Shortest(value, Layout::kFixed) + " " + Shortest(value, Layout::kScientific) + " " +
           Shortest(value, Layout::kShorter);
  };
  EXPECT_EQ(all(-0.0), "-0 -0e+00 -0");
  EXPECT_EQ(all(1e5), "100000 1e+05 1e+05");
  EXPECT_EQ(all(-0.001), "-0.001 -1e-03 -0.001");
  EXPECT_EQ(all(0x1p60), "1152921504606846976 1.152921504606847e+18 1152921504606846976");
  EXPECT_EQ(all(-std::numeric_limits<Double>::infinity()), "-inf -inf -inf");
  EXPECT_EQ(all(std::numeric_limits<Double>::quiet_NaN()), "nan nan nan");
  EXPECT_EQ(Shortest(Single{0.1f}, Layout::kShorter), "0.1");
}

TEST(Numbers, TextsAtTheLimitsAndTextsThatAreNone) {
  for (const char* text : {"", " ", "+1", "1 ", " 1", "1e", "e5", ".", "0x10", "1,5", "--1", "1e5x"}) {
    EXPECT_FALSE(DoubleOf(text) || SingleOf(text)) << text;
  }
  EXPECT_EQ(DoubleOf("1e999"), std::numeric_limits<Double>::infinity());
  EXPECT_EQ(DoubleOf("-1e-999"), 0);
  EXPECT_EQ(SingleOf("1e39"), std::numeric_limits<Single>::infinity());
  EXPECT_EQ(SingleOf(".5"), 0.5f);
  EXPECT_EQ(DoubleOf("5."), 5);
}

// Reads back what it writes, and writes what the standard library does, where it does.
template <class Floating, class Bits>
void Compare(std::optional<Floating> (*read)(std::string_view)) {
  std::mt19937_64 random(35);
  for (int i = 0; i < 100'000; ++i) {
    auto value = Floating();
    const auto bits = static_cast<Bits>(random());
    std::memcpy(&value, &bits, sizeof value);
    if (i % 4 == 1) value = static_cast<Floating>(static_cast<std::int64_t>(random() >> random() % 64));
    if (i % 4 == 2) value = static_cast<Floating>(random() % 1000'000) / Floating(1000);
    if (i % 4 == 3) value = std::ldexp(Floating(1), static_cast<int>(random() % 200) - 100);
    if (!std::isfinite(value)) continue;
    for (const Layout layout : {Layout::kFixed, Layout::kScientific, Layout::kShorter}) {
      const std::string text = Shortest(value, layout);
      ASSERT_EQ(read(text), value) << text;
#if defined(__cpp_lib_to_chars)
      char standard[512], *end = standard + sizeof standard;
      end = layout == Layout::kShorter ? std::to_chars(standard, end, value).ptr
            : layout == Layout::kFixed ? std::to_chars(standard, end, value, std::chars_format::fixed).ptr
                                       : std::to_chars(standard, end, value, std::chars_format::scientific).ptr;
      ASSERT_EQ(text, std::string(standard, end));
#endif
    }
  }
}

TEST(Numbers, AtRandom) {
  Compare<Double, std::uint64_t>(DoubleOf);
  Compare<Single, std::uint32_t>(SingleOf);
}

TEST(Arithmetic, RoundsToTheNearestWholeNumberInEveryMode) {
  constexpr Double kInfinity = std::numeric_limits<Double>::infinity();
  const std::vector<std::pair<Double, Double>> rows = {{0.5, 0},
                                                       {1.5, 2},
                                                       {2.5, 2},
                                                       {0.49999999999999994, 0},
                                                       {1.2, 1},
                                                       {1.8, 2},
                                                       {-0.5, 0},
                                                       {-1.5, -2},
                                                       {-2.5, -2},
                                                       {0x1p52 - 0.5, 0x1p52},
                                                       {kInfinity, kInfinity}};
  for (const int mode : {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
    std::fesetround(mode);
    for (const auto& [value, whole] : rows) EXPECT_EQ(NearestWhole(value), whole) << value << " in mode " << mode;
  }
  std::fesetround(FE_TONEAREST);
}

}  // namespace
}  // namespace TORVA35
