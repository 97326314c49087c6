// The readers of read_mesh on files of about a million tetrahedra (triangles for OBJ), against one pass of
// std::from_chars over the same numbers (a plain copy of the bytes for binary files) and against the format
// functions (faithful option).
// bench/exact_readers_meshio.py times meshio on the same files.
#include "box_mesh.h"
#include "tessarium/tessarium.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <map>
#include <vector>
#include <string>

using namespace qv7;
using namespace qv7::tessarium;

namespace {

constexpr unsigned n = 55;  // 55^3 cubes of six tetrahedra: 998250

mesh const& tetrahedra()
{
    static mesh m = [] {
        mesh made;
        unsigned p = n + 1;
        made.pos.resize(3, std::size_t(p) * p * p);
        for (std::size_t c = 0; c < made.pos.cols(); ++c) {
            made.pos(0, c) = 0.1 * (c % p) + 1e-7;
            made.pos(1, c) = 0.1 * (c / p % p) / 3.0;
            made.pos(2, c) = -0.1 * (c / (std::size_t(p) * p));
        }
        element_block b;
        b.type = ET_TETRA4;
        b.connect = make_box(n, true, false);
        made.blocks.push_back(b);
        return made;
    }();
    return m;
}

std::string path(char const* name)
{
    return std::string("/tmp/tessarium_bench_exact_") + name;
}

// Small field, IDs left-justified, as meshing programs write decks.
std::string const& small_field_deck()
{
    static std::string const file = [] {
        std::string f = path("small.bdf");
        std::FILE* out = std::fopen(f.c_str(), "w");
        mesh const& m = tetrahedra();
        std::fprintf(out, "BEGIN BULK\n");
        for (std::size_t j = 0; j < m.nbr_nodes(); ++j)
            std::fprintf(out, "GRID    %-8zu        %-8.5g%-8.5g%-8.5g\n", j + 1, m.pos(0, j), m.pos(1, j),
                         m.pos(2, j));
        dense2D<unsigned> const& t = m.blocks[0].connect;
        for (std::size_t e = 0; e < t.cols(); ++e)
            std::fprintf(out, "CTETRA  %-8zu1       %-8u%-8u%-8u%-8u\n", e + 1, t(0, e) + 1, t(2, e) + 1, t(1, e) + 1,
                         t(3, e) + 1);
        std::fprintf(out, "ENDDATA\n");
        std::fclose(out);
        return f;
    }();
    return file;
}

// The free-field deck of the portable writer.
std::string const& free_field_deck()
{
    static std::string const file = [] {
        std::string f = path("free.bdf");
        write_mesh(f, tetrahedra());
        return f;
    }();
    return file;
}

// 707^2 squares of two triangles: 999698.
mesh const& triangles()
{
    static mesh m = [] {
        mesh made;
        unsigned const k = 707, p = k + 1;
        made.pos.resize(3, std::size_t(p) * p);
        for (std::size_t c = 0; c < made.pos.cols(); ++c)
            made.pos(0, c) = 0.1 * (c % p) + 1e-7, made.pos(1, c) = 0.1 * (c / p) / 3.0, made.pos(2, c) = 0.0;
        element_block b;
        b.type = ET_FACE_T3;
        b.connect.resize(3, 2 * std::size_t(k) * k);
        for (std::size_t c = 0, e = 0; c < std::size_t(k) * k; ++c) {
            unsigned i = c % k, j = c / k, a = i + p * j;
            unsigned tri[2][3] = {{a, a + 1, a + p + 1}, {a, a + p + 1, a + p}};
            for (auto const& t : tri) std::copy(t, t + 3, b.connect.col(e++));
        }
        made.blocks.push_back(b);
        return made;
    }();
    return m;
}

std::string const& written(char const* name, mesh const& m, bool binary = false)
{
    static std::map<std::string, std::string> files;
    std::string& f = files[name];
    io_options options;
    options.binary = binary;
    if (f.empty()) f = path(name), write_mesh(f, m, options);
    return f;
}

// The files, and how their numbers are cut: 8 columns, commas, blanks, or binary numbers.
enum cut { columns, commas, blanks, binary };
struct bench_file {
    std::string const& (*path)();
    cut numbers;
    std::size_t elements;
};
bench_file const files[] = {
    {small_field_deck, columns, 6u * n* n* n},
    {free_field_deck, commas, 6u * n* n* n},
    {[]() -> std::string const& { return written("obj.obj", triangles()); }, blanks, 999698},
    {[]() -> std::string const& { return written("neu.neu", tetrahedra()); }, commas, 6u * n* n* n},
    {[]() -> std::string const& { return written("mesh.mesh", tetrahedra()); }, blanks, 6u * n* n* n},
    {[]() -> std::string const& { return written("vtk.vtk", tetrahedra()); }, blanks, 6u * n* n* n},
    {[]() -> std::string const& { return written("msh.msh", tetrahedra()); }, blanks, 6u * n* n* n},
    {[]() -> std::string const& { return written("binary.msh", tetrahedra(), true); }, binary, 6u * n* n* n},
    {[]() -> std::string const& { return written("meshb.meshb", tetrahedra()); }, binary, 6u * n* n* n},
};

void read_exact(benchmark::State& state)
{
    bench_file const& f = files[state.range(0)];
    for (auto _ : state) {
        mesh m;
        if (!read_mesh(f.path(), m) || m.nbr_elements() != f.elements) state.SkipWithError("read_mesh failed");
    }
}

void read_faithful(benchmark::State& state)
{
    io_options faithful;
    faithful.faithful = true;
    for (auto _ : state) {
        mesh m;
        if (!read_mesh(files[state.range(0)].path(), m, faithful)) state.SkipWithError("read_mesh failed");
    }
}

// The file read whole, then every number in it through std::from_chars.
void from_chars_pass(benchmark::State& state)
{
    bench_file const& f = files[state.range(0)];
    for (auto _ : state) {
        std::FILE* in = std::fopen(f.path().c_str(), "rb");
        std::string text;
        char chunk[1 << 16];
        for (std::size_t got; (got = std::fread(chunk, 1, sizeof chunk, in)) > 0;) text.append(chunk, got);
        std::fclose(in);
        double sum = 0.0;
        std::size_t count = 0;
        if (f.numbers == binary) {  // a plain copy of the bytes as 8-byte numbers
            std::vector<double> words(text.size() / 8);
            std::memcpy(words.data(), text.data(), 8 * words.size());
            for (double w : words) sum += w;
            count = words.size();
        }
        for (std::size_t at = 0, end; f.numbers != binary && at < text.size(); at = end + 1) {
            end = text.find('\n', at);
            if (end == std::string::npos) end = text.size();
            for (std::size_t b = f.numbers == blanks ? at : at + 8; b < end;) {
                std::size_t stop = b + 8;
                if (f.numbers != columns)
                    stop =
                        std::find(text.begin() + b, text.begin() + end, f.numbers == commas ? ',' : ' ') - text.begin();
                if (stop > end) stop = end;
                char const* p = text.data() + b;
                while (p < text.data() + stop && *p == ' ') ++p;
                double v;
                if (std::from_chars(p, text.data() + stop, v).ec == std::errc()) sum += v, ++count;
                b = f.numbers == columns ? stop : stop + 1;
            }
        }
        benchmark::DoNotOptimize(sum);
        state.counters["numbers"] = static_cast<double>(count);
    }
}

}  // namespace

// 0 small-field deck, 1 free-field deck, 2 OBJ, 3 FEMAP, 4 Medit, 5 VTK, 6 gmsh text, 7 gmsh binary,
// 8 Medit binary (the last five have no faithful reader).
BENCHMARK(read_exact)->DenseRange(0, 8)->Unit(benchmark::kMillisecond);
BENCHMARK(read_faithful)->DenseRange(0, 3)->Unit(benchmark::kMillisecond);
BENCHMARK(from_chars_pass)->DenseRange(0, 8)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
