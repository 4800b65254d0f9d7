#include "torva35/base/Numbers.h"

#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <limits>
#include <random>

namespace TORVA35 {
namespace {

template <class Floating>
std::string Shortest(Floating value, Layout layout) {
  std::string text;
  AppendShortest(text, value, layout);
  return text;
}

template <class Floating>
std::optional<Floating> Read(const std::string& text) {
  if constexpr (sizeof(Floating) == sizeof(Double)) {
    return DoubleOf(text);
  } else {
    return SingleOf(text);
  }
}

TEST(Numbers, InEachLayout) {
  struct Row {
    Double value;
    const char *fixed, *scientific, *shorter;
  };
  for (const Row& row :
       {Row{0.0, "0", "0e+00", "0"}, Row{-0.0, "-0", "-0e+00", "-0"}, Row{1500, "1500", "1.5e+03", "1500"},
        Row{1e5, "100000", "1e+05", "1e+05"}, Row{-0.001, "-0.001", "-1e-03", "-0.001"},
        Row{0.0001, "0.0001", "1e-04", "1e-04"}, Row{5e-324, nullptr, "5e-324", "5e-324"},
        Row{0x1p60, "1152921504606846976", "1.152921504606847e+18", "1152921504606846976"}}) {
    if (row.fixed != nullptr) {
      EXPECT_EQ(Shortest(row.value, Layout::kFixed), row.fixed);
    }
    EXPECT_EQ(Shortest(row.value, Layout::kScientific), row.scientific);
    EXPECT_EQ(Shortest(row.value, Layout::kShorter), row.shorter);
  }
  EXPECT_EQ(Shortest(Single{0.1f}, Layout::kShorter), "0.1");
  EXPECT_EQ(Shortest(-std::numeric_limits<Double>::infinity(), Layout::kFixed), "-inf");
  EXPECT_EQ(Shortest(std::numeric_limits<Double>::quiet_NaN(), Layout::kShorter), "nan");
}

TEST(Numbers, TextsThatAreNone) {
  for (const char* text : {"", " ", "+1", "1 ", " 1", "1e", "e5", ".", "0x10", "1,5", "--1", "1e5x"}) {
    EXPECT_FALSE(DoubleOf(text)) << text;
    EXPECT_FALSE(SingleOf(text)) << text;
  }
  EXPECT_EQ(DoubleOf("1e999"), std::numeric_limits<Double>::infinity());
  EXPECT_EQ(DoubleOf("-1e-999"), 0);
  EXPECT_EQ(SingleOf("1e39"), std::numeric_limits<Single>::infinity());
  EXPECT_EQ(SingleOf(".5"), 0.5f);
  EXPECT_EQ(DoubleOf("5."), 5);
}

// Reads back what it writes, and writes what the standard library does, where it does.
template <class Floating, class Bits>
void Compare(int count) {
  std::mt19937_64 random(35);
  for (int i = 0; i < count; ++i) {
    auto value = std::bit_cast<Floating>(static_cast<Bits>(random()));
    if (i % 4 == 1) value = static_cast<Floating>(static_cast<std::int64_t>(random() >> random() % 64));
    if (i % 4 == 2) value = static_cast<Floating>(random() % 1000'000) / Floating(1000);
    if (i % 4 == 3) value = std::ldexp(Floating(1), static_cast<int>(random() % 200) - 100);
    if (!std::isfinite(value)) continue;
    for (const Layout layout : {Layout::kFixed, Layout::kScientific, Layout::kShorter}) {
      const std::string text = Shortest(value, layout);
      ASSERT_EQ(Read<Floating>(text), value) << text;
#if defined(__cpp_lib_to_chars)
      char standard[512];
      const auto end =
          layout == Layout::kShorter ? std::to_chars(standard, standard + sizeof standard, value)
          : layout == Layout::kFixed
              ? std::to_chars(standard, standard + sizeof standard, value, std::chars_format::fixed)
              : std::to_chars(standard, standard + sizeof standard, value, std::chars_format::scientific);
      ASSERT_EQ(text, std::string(standard, end.ptr));
#endif
    }
  }
}

TEST(Numbers, RandomDoubles) {
  Compare<Double, std::uint64_t>(500'000);
}
TEST(Numbers, RandomSingles) {
  Compare<Single, std::uint32_t>(500'000);
}

}  // namespace
}  // namespace TORVA35
