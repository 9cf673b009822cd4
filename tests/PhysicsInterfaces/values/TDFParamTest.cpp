// The meaning of the texts of values: tables of numbers, quantities, truth values and lists. Numbers are compared with
// `strtod` on random texts.
#include <tarn/TDFParam.h>

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>

namespace tarn {
namespace {

std::vector<TDFParam::Type> const allTypes{TDFParam::Integer,     TDFParam::IntegerList, TDFParam::Logical,
                                           TDFParam::LogicalList, TDFParam::Real,        TDFParam::RealList,
                                           TDFParam::String,      TDFParam::StringList};

TEST(TDFParam, TypesHaveFixedNumbers) {
  for (int i = 0; i < 8; ++i) EXPECT_EQ(static_cast<int>(allTypes[static_cast<std::size_t>(i)]), i);
}

TEST(TDFParam, TellsListNumericAndElementTypes) {
  struct Row {
    TDFParam::Type type;
    bool list;
    bool numeric;
    TDFParam::Type element;
    char const* name;
  };
  for (Row const& row : {Row{TDFParam::Integer, false, true, TDFParam::Integer, "Integer"},
                         Row{TDFParam::IntegerList, true, true, TDFParam::Integer, "Integer List"},
                         Row{TDFParam::Logical, false, false, TDFParam::Logical, "Logical"},
                         Row{TDFParam::LogicalList, true, false, TDFParam::Logical, "Logical List"},
                         Row{TDFParam::Real, false, true, TDFParam::Real, "Real"},
                         Row{TDFParam::RealList, true, true, TDFParam::Real, "Real List"},
                         Row{TDFParam::String, false, false, TDFParam::String, "String"},
                         Row{TDFParam::StringList, true, false, TDFParam::String, "String List"}}) {
    EXPECT_EQ(TDFParam::isListType(row.type), row.list) << row.name;
    EXPECT_EQ(TDFParam::isNumericType(row.type), row.numeric) << row.name;
    EXPECT_EQ(TDFParam::elementType(row.type), row.element) << row.name;
    EXPECT_EQ(TDFParam::typeName(row.type), row.name);
    EXPECT_EQ(TDFParam::typeFromName(row.name), row.type);
  }
  EXPECT_EQ(TDFParam::typeFromName("real"), std::nullopt);
  EXPECT_EQ(TDFParam::typeFromName(""), std::nullopt);
}

TEST(TDFParam, ReadsDecimalNumbers) {
  struct Row {
    char const* text;
    double number;
  };
  for (Row const& row : {Row{"0", 0.0},
                         Row{"12", 12.0},
                         Row{"-12", -12.0},
                         Row{"+12", 12.0},
                         Row{"1.5", 1.5},
                         Row{".5", 0.5},
                         Row{"5.", 5.0},
                         Row{"-.5", -0.5},
                         Row{"1e3", 1000.0},
                         Row{"1E3", 1000.0},
                         Row{"1e+3", 1000.0},
                         Row{"1.5e-3", 0.0015},
                         Row{"+1.e1", 10.0},
                         Row{"007", 7.0},
                         Row{" 12 ", 12.0},
                         Row{"\t12\r\n", 12.0},
                         Row{"1e0005", 1e5},
                         Row{"1.7976931348623157e308", std::numeric_limits<double>::max()},
                         Row{"2.2250738585072014e-308", std::numeric_limits<double>::min()},
                         Row{"4.9406564584124654e-324", std::numeric_limits<double>::denorm_min()},
                         Row{"3e-324", std::numeric_limits<double>::denorm_min()},
                         Row{"2e-324", 0.0},
                         Row{"1e-400", 0.0},
                         Row{"1e-99999999999999999999", 0.0},
                         Row{"0e99999999999999999999", 0.0},
                         Row{"0.0000e400", 0.0},
                         Row{"9007199254740993", 9007199254740992.0}}) {
    std::optional<double> const number = TDFParam::asNumber(row.text);
    ASSERT_TRUE(number.has_value()) << row.text;
    EXPECT_EQ(*number, row.number) << row.text;
  }
  EXPECT_TRUE(std::signbit(TDFParam::asNumber("-0").value()));
  EXPECT_TRUE(std::signbit(TDFParam::asNumber("-1e-400").value()));
}

TEST(TDFParam, RefusesWhatIsNoDecimalNumber) {
  for (char const* const text : {"",
                                 " ",
                                 "+",
                                 "-",
                                 ".",
                                 "e",
                                 "e5",
                                 ".e5",
                                 "1e",
                                 "1e+",
                                 "1e-",
                                 "--1",
                                 "+-1",
                                 "- 1",
                                 "1 2",
                                 "1,5",
                                 "1.5.2",
                                 "0x10",
                                 "0X1p3",
                                 "1p3",
                                 "inf",
                                 "-inf",
                                 "INF",
                                 "infinity",
                                 "nan",
                                 "NaN",
                                 "nan(1)",
                                 "1e400",
                                 "-1e400",
                                 "1e309",
                                 "1.8e308",
                                 "1e99999999999999999999",
                                 "12a",
                                 "a12",
                                 "12 [m]",
                                 "1_000",
                                 "1d3",
                                 "1f",
                                 "\xC2\xA0"
                                 "1",
                                 "true"}) {
    EXPECT_EQ(TDFParam::asNumber(text), std::nullopt) << text;
  }
  EXPECT_EQ(TDFParam::asNumber(std::string_view("1\0", 2)), std::nullopt);
}

TEST(TDFParam, JudgesLongNumbersByTheirSizeNotTheirLength) {
  std::string const zeros(1000, '0');
  EXPECT_EQ(TDFParam::asNumber("1" + zeros), std::nullopt);
  EXPECT_EQ(TDFParam::asNumber("1" + zeros + "e-1000"), 1.0);
  EXPECT_EQ(TDFParam::asNumber("0." + zeros + "1"), 0.0);
  EXPECT_EQ(TDFParam::asNumber("0." + zeros + "1e1001"), 1.0);
  EXPECT_EQ(TDFParam::asNumber(zeros + "5"), 5.0);
  EXPECT_EQ(TDFParam::asNumber("0." + zeros + "1e1400"), std::nullopt);
  EXPECT_EQ(TDFParam::asNumber("1" + zeros + "e-1400"), 0.0);
  EXPECT_EQ(TDFParam::asNumber("0." + std::string(10'000'000, '3')), 1.0 / 3.0);
}

TEST(TDFParam, ReadsRandomNumbersAsStrtodDoes) {
  std::mt19937 random(20261121);
  auto const pick = [&random](int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); };
  for (int i = 0; i < 20000; ++i) {
    std::string text;
    for (int n = pick(1, 20); n > 0; --n) text += static_cast<char>('0' + pick(0, 9));
    text.insert(static_cast<std::size_t>(pick(0, static_cast<int>(text.size()))), ".");
    if (pick(0, 1) == 1) text += "e" + std::to_string(pick(-345, 320));
    if (pick(0, 1) == 1) text.insert(0, "-");
    double const expected = std::strtod(text.c_str(), nullptr);
    std::optional<double> const number = TDFParam::asNumber(text);
    if (std::isinf(expected)) {
      ASSERT_EQ(number, std::nullopt) << text;
    } else {
      ASSERT_EQ(number, expected) << text;
    }
  }
}

TEST(TDFParam, ReadsNumbersTheSameInEveryLocale) {
  std::string const before = std::setlocale(LC_ALL, nullptr);
  for (char const* const locale : {"de_DE.UTF-8", "de_DE", "fr_FR.UTF-8"}) {
    std::setlocale(LC_ALL, locale);
    EXPECT_EQ(TDFParam::asNumber("1.5"), 1.5);
    EXPECT_EQ(TDFParam::asNumber("1,5"), std::nullopt);
  }
  std::setlocale(LC_ALL, before.c_str());
}

TEST(TDFParam, TakesQuantitiesApart) {
  struct Row {
    char const* text;
    float number;
    char const* numberText;
    char const* units;
  };
  for (Row const& row : {Row{"12.5 [m/s]", 12.5F, "12.5", "m/s"}, Row{"12.5[m/s]", 12.5F, "12.5", "m/s"},
                         Row{" -1e3 \t[kg m^-3] ", -1000.0F, "-1e3", "kg m^-3"}, Row{"5", 5.0F, "5", ""},
                         Row{" 5 ", 5.0F, "5", ""}, Row{"5 []", 5.0F, "5", ""}, Row{"5 [1]", 5.0F, "5", "1"}}) {
    std::string number = "old";
    std::string units = "old";
    std::pair<float, bool> const result = TDFParam::valueAsFloat(row.text, number, units);
    EXPECT_TRUE(result.second) << row.text;
    EXPECT_EQ(result.first, row.number) << row.text;
    EXPECT_EQ(number, row.numberText) << row.text;
    EXPECT_EQ(units, row.units) << row.text;
  }
}

TEST(TDFParam, RefusesWhatIsNoQuantity) {
  for (char const* const text : {"", "[m]", "m", "5 m", "5 [m", "5 m]", "5 [m] x", "5 [[m]]", "5 [m][s]", "5 ]", "]",
                                 "x [m]", "1e400 [m]", "5 6 [m]"}) {
    std::string number = "old";
    std::string units = "old";
    std::pair<float, bool> const result = TDFParam::valueAsFloat(text, number, units);
    EXPECT_FALSE(result.second) << text;
    EXPECT_EQ(result.first, 0.0F) << text;
    EXPECT_EQ(number, "") << text;
    EXPECT_EQ(units, "") << text;
  }
}

TEST(TDFParam, TakesAQuantityApartIntoItsOwnText) {
  std::string value = "12.5 [m/s]";
  std::string units;
  EXPECT_TRUE(TDFParam::valueAsFloat(value, value, units).second);
  EXPECT_EQ(value, "12.5");
  EXPECT_EQ(units, "m/s");
}

TEST(TDFParam, AQuantityTooLargeForAFloatIsUnderstoodAndInfinite) {
  std::string number;
  std::string units;
  std::pair<float, bool> const result = TDFParam::valueAsFloat("-1e300 [Pa]", number, units);
  EXPECT_TRUE(result.second);
  EXPECT_EQ(result.first, -std::numeric_limits<float>::infinity());
  EXPECT_EQ(number, "-1e300");
}

TEST(TDFParam, ReadsTruthInAnyCase) {
  for (char const* const text : {"true", "TRUE", "True", "yes", "Yes", "on", "ON", "1", " true "}) {
    EXPECT_EQ(TDFParam::asLogical(text), true) << text;
  }
  for (char const* const text : {"false", "False", "no", "NO", "off", "Off", "0", "\tno\n"}) {
    EXPECT_EQ(TDFParam::asLogical(text), false) << text;
  }
  for (char const* const text : {"", " ", "2", "01", "1.0", "t", "f", "y", "n", "truee", "yes no", "o n", "wahr"}) {
    EXPECT_EQ(TDFParam::asLogical(text), std::nullopt) << text;
  }
}

TEST(TDFParam, ComparesValuesByTheirType) {
  struct Row {
    TDFParam::Type type;
    char const* a;
    char const* b;
    bool equal;
  };
  for (Row const& row : {
           Row{TDFParam::Integer, "1", "1", true},
           Row{TDFParam::Integer, "1", "01", true},
           Row{TDFParam::Integer, "1", "+1", true},
           Row{TDFParam::Integer, " 1", "1 ", true},
           Row{TDFParam::Integer, "0", "-0", true},
           Row{TDFParam::Integer, "1", "2", false},
           Row{TDFParam::Integer, "one", "one", true},
           Row{TDFParam::Integer, "one", "One", false},
           Row{TDFParam::Integer, "1", "one", false},
           Row{TDFParam::Integer, "", "0", false},
           Row{TDFParam::Real, "1.50", "1.5", true},
           Row{TDFParam::Real, "1e3", "1000", true},
           Row{TDFParam::Real, "1 [m]", "1.0[m]", true},
           Row{TDFParam::Real, "1 [m]", "1 [mm]", false},
           Row{TDFParam::Real, "1 [m]", "1", false},
           Row{TDFParam::Real, "1 []", "1", true},
           Row{TDFParam::Real, "1000 [mm]", "1 [m]", false},  // units are compared as text
           Row{TDFParam::Real, "nan", "nan", true},           // as text
           Row{TDFParam::Real, "1e400", "1e401", false},
           Row{TDFParam::Logical, "true", "Yes", true},
           Row{TDFParam::Logical, "0", "off", true},
           Row{TDFParam::Logical, "true", "false", false},
           Row{TDFParam::Logical, "maybe", "maybe", true},
           Row{TDFParam::Logical, "maybe", "perhaps", false},
           Row{TDFParam::Logical, "maybe", "true", false},
           Row{TDFParam::String, "1", "1.0", false},
           Row{TDFParam::String, "Water", "Water", true},
           Row{TDFParam::String, "Water", " Water", false},
           Row{TDFParam::String, "Water", "water", false},
           Row{TDFParam::IntegerList, "1,2,3", " 1 , 02,3", true},
           Row{TDFParam::IntegerList, "1,2", "1,2,3", false},
           Row{TDFParam::IntegerList, "1,2", "2,1", false},
           Row{TDFParam::RealList, "1 [m],x", "1.0 [m], x", true},
           Row{TDFParam::RealList, "1 [m]", "1 [s]", false},
           Row{TDFParam::LogicalList, "true,no", "1, FALSE", true},
           Row{TDFParam::LogicalList, "true,no", "1, TRUE", false},
           Row{TDFParam::StringList, "Water,Air", " Water , Air ", true},
           Row{TDFParam::StringList, "Water,Air", "Air,Water", false},
           Row{TDFParam::StringList, "", "", true},
           Row{TDFParam::StringList, "", " ", false},  // no item and one empty item
           Row{TDFParam::StringList, " ", "  ", true},
           Row{TDFParam::StringList, "a", "a,", false},
           Row{TDFParam::StringList, "a,,b", "a, ,b", true},
       }) {
    EXPECT_EQ(TDFParam::valuesEqual(row.type, row.a, row.b), row.equal)
        << TDFParam::typeName(row.type) << ": " << row.a << " and " << row.b;
    EXPECT_EQ(TDFParam::valuesEqual(row.type, row.b, row.a), row.equal)
        << TDFParam::typeName(row.type) << ": " << row.b << " and " << row.a;
  }
}

}  // namespace
}  // namespace tarn
