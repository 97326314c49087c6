#include "exchange/text_sink.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>

using qv7::tessarium::__text_sink;

namespace {

// Runs `write` on a sink over a memory stream and returns the bytes that reached the stream.
template <class Write>
std::string sunk(Write write)
{
    char* buffer = nullptr;
    std::size_t size = 0;
    std::FILE* stream = open_memstream(&buffer, &size);
    {
        __text_sink out(stream);
        write(out);
    }
    std::fclose(stream);
    std::string text(buffer, size);
    std::free(buffer);
    return text;
}

template <class... Args>
std::string printed(char const* format, Args... args)
{
    char text[512];
    int n = std::snprintf(text, sizeof text, format, args...);
    return std::string(text, static_cast<std::size_t>(n));
}

std::vector<double> awkward_doubles()
{
    double inf = std::numeric_limits<double>::infinity();
    std::vector<double> v = {0.0,     -0.0,    1.0,          -1.0,    0.5,      9.9999995,    9.9999994999, 0.125,
                             1e-300,  DBL_MIN, DBL_TRUE_MIN, DBL_MAX, -DBL_MAX, 123456.5,     2.5e-7,       99999.95,
                             1.0e100, 1.25e-5, 0.000015,     inf,     -inf,     std::nan(""), -std::nan("")};
    std::mt19937_64 random(11);
    for (int i = 0; i < 20000; ++i) {
        std::uint64_t bits = random();
        double x;
        std::memcpy(&x, &bits, sizeof x);
        v.push_back(x);
        // Short decimals, where exact ties of rounding happen.
        v.push_back(static_cast<double>(random() % 2000001) / 1024.0 - 1000.0);
        v.push_back(static_cast<double>(static_cast<long>(random() % 100000000)) / std::pow(10.0, random() % 12));
    }
    return v;
}

}  // namespace

TEST(TextSink, NumbersMatchTheirPrintfConversions)
{
    for (double x : awkward_doubles()) {
        ASSERT_EQ(sunk([x](__text_sink& o) { o.scientific(x, 6, true); }), printed("%E", x)) << x;
        ASSERT_EQ(sunk([x](__text_sink& o) { o.scientific(x, 6, true, 16); }), printed("%16E", x)) << x;
        ASSERT_EQ(sunk([x](__text_sink& o) { o.scientific(x, 5, false, 12); }), printed("%12.5e", x)) << x;
        ASSERT_EQ(sunk([x](__text_sink& o) { o.fixed(x); }), printed("%f", x)) << x;
        ASSERT_EQ(sunk([x](__text_sink& o) { o.general(x); }), printed("%g", x)) << x;
    }
    for (int v : {0, 1, -1, 9, 10, 99, 100, 12345678, 123456789, -1234567, INT_MAX, INT_MIN}) {
        EXPECT_EQ(sunk([v](__text_sink& o) { o.integer(v); }), printed("%d", v));
        EXPECT_EQ(sunk([v](__text_sink& o) { o.integer(v, 8); }), printed("%8d", v));
        EXPECT_EQ(sunk([v](__text_sink& o) { o.integer(v, 16); }), printed("%16d", v));
        EXPECT_EQ(sunk([v](__text_sink& o) { o.integer(unsigned(v)); }), printed("%u", unsigned(v)));
    }
    for (unsigned long v : {0ul, 4294967296ul, 18446744073709551615ul})
        EXPECT_EQ(sunk([v](__text_sink& o) { o.integer(v); }), printed("%lu", v));
    EXPECT_EQ(__text_sink::as_int(0xFFFFFFFFul + 1), 0);
    EXPECT_EQ(__text_sink::as_int(0x80000000ul), INT_MIN);
}

TEST(TextSink, LongOutputArrivesWholeAndInOrder)
{
    std::string expected, big(100000, 'x');
    for (int i = 0; i < 30000; ++i) expected += printed("%d ", i);
    expected += big + "end";
    std::string got = sunk([&](__text_sink& o) {
        for (int i = 0; i < 30000; ++i) {
            o.integer(i);
            o.put(' ');
        }
        o.text(big.c_str());
        o.text("end");
    });
    EXPECT_EQ(got, expected);
}
