// __read_double against strtod on a million number texts: the same bits and the same end.
#include "exchange/read_double.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>

namespace {

std::string random_text(std::mt19937_64& rng)
{
    static char const* const odd[] = {"inf",
                                      "-INF",
                                      "+Infinity",
                                      "nan",
                                      "-nan",
                                      "NaN(123)",
                                      "0x1.8p3",
                                      "-0X1P-3",
                                      "0x",
                                      ".",
                                      "-",
                                      "+",
                                      "-.",
                                      "e5",
                                      ".e1",
                                      "",
                                      "1e",
                                      "1e+",
                                      "1.e5",
                                      "-.5e-3",
                                      "0",
                                      "-0",
                                      "00012.5000",
                                      "1e400",
                                      "-1e400",
                                      "1e-400",
                                      "4.9e-324",
                                      "2.5e-324",
                                      "1.7976931348623157e308",
                                      "1.7976931348623159e308",
                                      "2.2250738585072011e-308"};
    static char const* const lead[] = {"", "", "", " ", "  ", "\t", "\n ", "+", "-", " -", "- ", "\v+"};
    static char const* const tail[] = {"", "", " 1", "x", "e", "e-", ".5", "\n", "abc", "d0", "f"};
    std::string s = lead[rng() % (sizeof lead / sizeof *lead)];
    char buffer[64];
    switch (rng() % 6) {
    case 0:
        s += odd[rng() % (sizeof odd / sizeof *odd)];
        break;
    case 1: {  // any bit pattern, printed exactly, as the writers do, or short
        std::uint64_t bits = rng();
        double x;
        std::memcpy(&x, &bits, sizeof x);
        char const* format[] = {"%.17g", "%le", "%.3e", "%g", "%.20E", "%f"};
        std::snprintf(buffer, sizeof buffer, format[rng() % 6], x);
        s += buffer;
        break;
    }
    case 2:  // values of coordinates
        std::snprintf(buffer, sizeof buffer, "%.*e", int(rng() % 18),
                      std::ldexp(double(rng() % 100000), -int(rng() % 30)));
        s += buffer;
        break;
    default: {  // digit strings: long mantissas, halfway cases, large and tiny exponents
        for (unsigned n = 1 + rng() % 40; n--;) s += char('0' + rng() % 10);
        if (rng() % 2) s.insert(s.size() - rng() % (s.size() + 1), ".");
        if (rng() % 2) s += (rng() % 2 ? "e" : "E") + std::to_string(int(rng() % 800) - 400);
        break;
    }
    }
    return s + tail[rng() % (sizeof tail / sizeof *tail)];
}

TEST(ReadDouble, GivesTheBitsAndEndOfStrtodOnAMillionTexts)
{
    std::mt19937_64 rng(1);
    for (int k = 0; k < 1000000; ++k) {
        std::string text = random_text(rng);
        char line[128] = {};
        ASSERT_LT(text.size(), sizeof line);
        std::memcpy(line, text.c_str(), text.size());
        char* want_end;
        double want = std::strtod(line, &want_end);
        char const* end;
        double got = qv7::tessarium::__read_double(line, line + sizeof line, &end);
        ASSERT_EQ(end, want_end) << '"' << text << '"';
        ASSERT_EQ(std::memcmp(&got, &want, sizeof got), 0) << '"' << text << '"';
    }
}

}  // namespace
