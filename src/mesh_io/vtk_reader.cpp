// Legacy VTK files, ASCII or BINARY (big-endian numbers): unstructured grids and polydata, cells
// led by their counts or given as offsets and connectivity, point and cell data as node and
// element fields. A one-component integer cell array named "reference" gives the references.
#include "mesh_io/cell_kinds.h"
#include "mesh_io/element_runs.h"
#include "mesh_io/file_text.h"
#include "mesh_io/mesh_io.h"
#include "mesh_io/number_text.h"

#include <charconv>
#include <cstring>
#include <string_view>
#include <vector>

namespace qv7 {
namespace tessarium {
namespace {

struct number_type {
    char const* name;
    unsigned char size;  // bytes in binary data
    bool real, is_signed;
};
constexpr number_type number_types[] = {
    {"unsigned_char", 1, false, false}, {"char", 1, false, true},          {"unsigned_short", 2, false, false},
    {"short", 2, false, true},          {"unsigned_int", 4, false, false}, {"int", 4, false, true},
    {"unsigned_long", 8, false, false}, {"long", 8, false, true},          {"vtktypeuint64", 8, false, false},
    {"vtktypeint64", 8, false, true},   {"vtkIdType", 8, false, true},     {"float", 4, true, true},
    {"double", 8, true, true}};

// The cell kinds without a table row: lists of points, strips, and axis-aligned pixels and voxels.
enum : unsigned char {
    poly_vertex = 2,
    poly_line = 4,
    triangle_strip = 6,
    polygon = 7,
    pixel = 8,
    voxel = 11,
};

bool same_word(std::string_view a, char const* b)
{
    std::size_t n = std::strlen(b);
    if (a.size() != n) return false;
    for (std::size_t k = 0; k < n; ++k)
        if ((a[k] | 0x20) != (b[k] | 0x20)) return false;
    return true;
}

// Cells as offsets into one list of point numbers, and their VTK types.
struct cell_list {
    std::vector<std::int64_t> offsets{0}, points;
    std::vector<unsigned char> types;
    std::size_t size() const { return offsets.size() - 1; }
};

struct data_array {
    std::string name;
    unsigned components;
    bool integer;
    std::vector<double> values;  // components per tuple
};

struct vtk_file {
    std::string const& path;
    io_report& r;
    std::string const& text;
    std::size_t at = 0;
    bool binary = false;

    int fail(std::string const& what)
    {
        std::string where = binary ? "byte " + std::to_string(at) : "line " + std::to_string(__line_number(text, at));
        return __fail(r, io_malformed, path, where + ": " + what);
    }
    bool blank(char c) const { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }
    bool word(std::string_view& w)
    {
        while (at < text.size() && blank(text[at])) ++at;
        std::size_t b = at;
        while (at < text.size() && !blank(text[at])) ++at;
        w = std::string_view(text).substr(b, at - b);
        return at > b;
    }
    // The words of the next line that holds any, at most `most` of them; `at` left at its end.
    std::size_t header(std::string_view* words, std::size_t most)
    {
        while (at < text.size() && blank(text[at])) ++at;
        std::size_t n = 0, end = text.find('\n', at);
        if (end == std::string::npos) end = text.size();
        while (n < most) {
            while (at < end && blank(text[at])) ++at;
            if (at >= end) break;
            std::size_t b = at;
            while (at < end && !blank(text[at])) ++at;
            words[n++] = std::string_view(text).substr(b, at - b);
        }
        at = end;
        return n;
    }
    std::string_view rest_of_line()
    {
        std::size_t end = text.find('\n', at);
        if (end == std::string::npos) end = text.size();
        std::string_view line = std::string_view(text).substr(at, end - at);
        at = end < text.size() ? end + 1 : end;
        return line;
    }

    number_type const* type(std::string_view name)
    {
        for (number_type const& t : number_types)
            if (name == t.name) return &t;
        fail("unknown data type \"" + std::string(name) + "\"");
        return nullptr;
    }
    // Whether n numbers of type t can be in the rest of the file: binary data starts on the
    // next line; a text number takes at least a digit and a blank.
    bool fits(std::uint64_t n, number_type const& t)
    {
        if (binary) {
            std::size_t start = text.find('\n', at);
            std::size_t left = start == std::string::npos ? 0 : text.size() - start - 1;
            return n <= left / t.size;
        }
        return n <= (text.size() - at) / 2;
    }

    // n numbers of type t, each handed to put(k, value) as a double or an int64.
    template <class Value, class Put>
    bool numbers(std::size_t n, number_type const& t, Put put)
    {
        if (binary) return binary_numbers<Value>(n, t, put);
        std::string_view w;
        for (std::size_t k = 0; k < n; ++k) {
            Value v;
            if (!word(w) || !parse(w, v))
                return fail("number " + std::to_string(k + 1) + " of " + std::to_string(n) +
                            (w.empty() ? " is missing" : " is not a number")),
                       false;
            put(k, v);
        }
        return true;
    }
    static bool parse(std::string_view w, double& v) { return __parse_real(w.data(), w.data() + w.size(), v); }
    static bool parse(std::string_view w, std::int64_t& v)
    {
        char const* b = w.data() + (w[0] == '+');
        std::from_chars_result got = std::from_chars(b, w.data() + w.size(), v);
        return got.ec == std::errc() && got.ptr == w.data() + w.size();
    }

    template <class Value, class Put>
    bool binary_numbers(std::size_t n, number_type const& t, Put put)
    {
        std::size_t start = text.find('\n', at);
        if (start == std::string::npos || n > (text.size() - start - 1) / t.size)
            return fail("the file ends inside " + std::to_string(n) + " binary numbers"), false;
        unsigned char const* p = reinterpret_cast<unsigned char const*>(text.data()) + start + 1;
        for (std::size_t k = 0; k < n; ++k, p += t.size) {
            std::uint64_t bits = 0;
            for (unsigned b = 0; b < t.size; ++b) bits = bits << 8 | p[b];
            put(k, convert<Value>(bits, t));
        }
        at = start + 1 + n * t.size;
        return true;
    }
    template <class Value>
    static Value convert(std::uint64_t bits, number_type const& t)
    {
        if (t.real && t.size == 4) {
            float f;
            std::uint32_t b32 = static_cast<std::uint32_t>(bits);
            std::memcpy(&f, &b32, 4);
            return static_cast<Value>(f);
        }
        if (t.real) {
            double d;
            std::memcpy(&d, &bits, 8);
            return static_cast<Value>(d);
        }
        if (t.is_signed && t.size < 8 && bits >> (8 * t.size - 1)) bits |= ~std::uint64_t(0) << (8 * t.size);
        return t.is_signed ? static_cast<Value>(static_cast<std::int64_t>(bits)) : static_cast<Value>(bits);
    }
};

// A count from the text of a header word; false for anything but a number of 0 to 2^40.
bool count_of(std::string_view w, std::size_t& n)
{
    std::int64_t v;
    if (w.empty() || !vtk_file::parse(w, v) || v < 0 || v > (std::int64_t(1) << 40)) return false;
    n = static_cast<std::size_t>(v);
    return true;
}

// Cells of a CELLS, VERTICES, LINES, POLYGONS or TRIANGLE_STRIPS section: counts inline, or the
// OFFSETS and CONNECTIVITY arrays that follow.
int read_cells(vtk_file& f, std::string_view const* words, std::size_t nw, cell_list& cells, unsigned char type)
{
    std::string keyword(words[0]);
    std::size_t a, b;
    if (nw < 3 || !count_of(words[1], a) || !count_of(words[2], b)) return f.fail(keyword + ": two counts expected");
    std::size_t mark = f.at;
    std::string_view next[2];
    std::size_t n0 = cells.size(), nn = f.header(next, 2);
    if (nn == 2 && same_word(next[0], "OFFSETS")) {
        number_type const* t = f.type(next[1]);
        if (!t) return f.r.code;
        if (a == 0 || !f.fits(a, *t)) return f.fail(keyword + ": " + std::to_string(a) + " offsets cannot fit");
        std::size_t base = cells.points.size();
        std::int64_t previous = 0;
        bool rising = true;
        cells.offsets.reserve(n0 + a);
        if (!f.numbers<std::int64_t>(a, *t, [&](std::size_t k, std::int64_t v) {
                rising = rising && v >= previous && (k != 0 || v == 0) && static_cast<std::uint64_t>(v) <= b;
                previous = v;
                if (k) cells.offsets.push_back(static_cast<std::int64_t>(base) + v);
            }))
            return f.r.code;
        if (!rising || static_cast<std::size_t>(previous) != b)
            return f.fail(keyword + ": the offsets do not rise from 0 to " + std::to_string(b));
        if (f.header(next, 2) != 2 || !same_word(next[0], "CONNECTIVITY"))
            return f.fail(keyword + ": CONNECTIVITY expected after the offsets");
        if (!(t = f.type(next[1]))) return f.r.code;
        if (!f.fits(b, *t)) return f.fail(keyword + ": " + std::to_string(b) + " point numbers cannot fit");
        cells.points.resize(base + b);
        if (!f.numbers<std::int64_t>(b, *t, [&](std::size_t k, std::int64_t v) { cells.points[base + k] = v; }))
            return f.r.code;
    } else {
        f.at = mark;
        number_type const* t = f.binary ? &number_types[5] : &number_types[10];  // int, or any integer text
        if (!f.fits(b, *t) || a > b) return f.fail(keyword + ": " + std::to_string(b) + " numbers cannot fit");
        std::vector<std::int64_t> flat(b);
        if (!f.numbers<std::int64_t>(b, *t, [&](std::size_t k, std::int64_t v) { flat[k] = v; })) return f.r.code;
        std::size_t k = 0;
        cells.offsets.reserve(n0 + a + 1);
        for (std::size_t c = 0; c < a; ++c) {
            if (k >= b || flat[k] < 0 || static_cast<std::uint64_t>(flat[k]) > b - k - 1)
                return f.fail(keyword + ": cell " + std::to_string(c + 1) + " runs past the " + std::to_string(b) +
                              " numbers");
            cells.points.insert(cells.points.end(), flat.begin() + k + 1, flat.begin() + k + 1 + flat[k]);
            k += 1 + static_cast<std::size_t>(flat[k]);
            cells.offsets.push_back(static_cast<std::int64_t>(cells.points.size()));
        }
        if (k != b)
            return f.fail(keyword + ": the cells hold " + std::to_string(k) + " numbers, not " + std::to_string(b));
    }
    if (type) cells.types.resize(cells.size(), type);
    return 0;
}

// One array of data: `components` numbers per tuple.
int read_array(vtk_file& f, std::string name, std::string_view type_name, std::size_t components, std::size_t tuples,
               std::vector<data_array>& into)
{
    number_type const* t = f.type(type_name);
    if (!t) return f.r.code;
    std::uint64_t n = std::uint64_t(components) * tuples;
    if (components == 0 || components > 4096 || !f.fits(n, *t))
        return f.fail("array " + name + ": " + std::to_string(tuples) + " tuples cannot fit");
    data_array a{std::move(name), static_cast<unsigned>(components), !t->real, std::vector<double>(n)};
    if (!f.numbers<double>(n, *t, [&](std::size_t k, double v) { a.values[k] = v; })) return f.r.code;
    into.push_back(std::move(a));
    return 0;
}

// Lines up to an empty one, as METADATA runs.
void skip_to_empty_line(vtk_file& f)
{
    f.rest_of_line();
    while (f.at < f.text.size()) {
        std::string_view line = f.rest_of_line();
        if (line.find_first_not_of(" \t\r") == std::string_view::npos) break;
    }
}

// A METADATA block after an array, when there is one.
void skip_metadata(vtk_file& f)
{
    std::size_t mark = f.at;
    std::string_view w[1];
    if (f.header(w, 1) == 1 && same_word(w[0], "METADATA"))
        skip_to_empty_line(f);
    else
        f.at = mark;
}

struct vtk_content {
    std::size_t points = 0;
    bool has_points = false;
    cell_list cells;
    cell_list poly[4];  // vertices, lines, polygons, strips: cell data follow this order
    std::vector<data_array> point_data, cell_data;
};

int read_attribute(vtk_file& f, std::string_view const* w, std::size_t nw, std::size_t tuples,
                   std::vector<data_array>* into)
{
    std::string keyword(w[0]);
    if (same_word(w[0], "FIELD")) {
        std::size_t arrays;
        if (nw < 3 || !count_of(w[2], arrays)) return f.fail("FIELD: a count of arrays expected");
        for (std::size_t k = 0; k < arrays; ++k) {
            std::string_view a[4];
            std::size_t components, n;
            if (f.header(a, 4) != 4 || !count_of(a[1], components) || !count_of(a[2], n))
                return f.fail("FIELD array " + std::to_string(k + 1) + ": name, components, tuples and type expected");
            if (into && n != tuples)
                return f.fail("FIELD array " + std::string(a[0]) + ": " + std::to_string(n) + " tuples, not " +
                              std::to_string(tuples));
            std::vector<data_array> skipped;
            if (read_array(f, std::string(a[0]), a[3], components, n, into ? *into : skipped) < 0) return f.r.code;
            if (!into) __pass_over(f.r, "field data arrays", 1);
            skip_metadata(f);
        }
        return 0;
    }
    if (!into) return f.fail(keyword + " outside POINT_DATA and CELL_DATA");
    std::size_t components = 0;
    if (same_word(w[0], "SCALARS")) {
        components = 1;
        if (nw < 3 || (nw > 3 && !count_of(w[3], components))) return f.fail("SCALARS: name, type [components]");
        std::string_view lt[2];
        std::size_t mark = f.at;
        if (f.header(lt, 2) < 1 || !same_word(lt[0], "LOOKUP_TABLE")) f.at = mark;
    } else if (same_word(w[0], "VECTORS") || same_word(w[0], "NORMALS")) {
        components = 3;
    } else if (same_word(w[0], "TENSORS")) {
        components = 9;
    } else if (same_word(w[0], "TENSORS6")) {
        components = 6;
    }
    if (components) {
        if (nw < 3) return f.fail(keyword + ": a name and a type expected");
        if (read_array(f, std::string(w[1]), w[2], components, tuples, *into) < 0) return f.r.code;
        skip_metadata(f);
        return 0;
    }
    // Attributes that are no field of a mesh: passed over by their sizes.
    std::size_t per = 0;
    number_type const* t = nullptr;
    if (same_word(w[0], "COLOR_SCALARS") && nw >= 3 && count_of(w[2], per)) {
        t = f.binary ? &number_types[0] : &number_types[11];
    } else if (same_word(w[0], "TEXTURE_COORDINATES") && nw >= 4 && count_of(w[2], per)) {
        if (!(t = f.type(w[3]))) return f.r.code;
    } else if ((same_word(w[0], "GLOBAL_IDS") || same_word(w[0], "PEDIGREE_IDS")) && nw >= 3) {
        per = 1;
        if (!(t = f.type(w[2]))) return f.r.code;
    } else if (same_word(w[0], "LOOKUP_TABLE") && nw >= 3 && count_of(w[2], per)) {
        t = f.binary ? &number_types[0] : &number_types[11];
        tuples = 4;
    } else {
        return f.fail("unknown keyword \"" + keyword + "\"");
    }
    std::uint64_t n = std::uint64_t(per) * tuples;
    if (!f.fits(n, *t)) return f.fail(keyword + ": " + std::to_string(n) + " numbers cannot fit");
    if (!f.numbers<double>(n, *t, [](std::size_t, double) {})) return f.r.code;
    __pass_over(f.r, keyword + " arrays", 1);
    return 0;
}

int read_sections(vtk_file& f, vtk_content& c, bool polydata, mesh& m)
{
    std::vector<data_array>* data = nullptr;
    std::size_t tuples = 0;
    static char const* const poly_keywords[4] = {"VERTICES", "LINES", "POLYGONS", "TRIANGLE_STRIPS"};
    static unsigned char const poly_types[4] = {poly_vertex, poly_line, polygon, triangle_strip};
    for (;;) {
        std::string_view w[4];
        std::size_t nw = f.header(w, 4);
        if (nw == 0) return 0;
        int poly = -1;
        for (int k = 0; k < 4; ++k)
            if (same_word(w[0], poly_keywords[k])) poly = k;
        if (same_word(w[0], "POINTS")) {
            std::size_t n;
            number_type const* t;
            if (nw < 3 || !count_of(w[1], n)) return f.fail("POINTS: a count and a type expected");
            if (!(t = f.type(w[2]))) return f.r.code;
            if (!f.fits(3 * std::uint64_t(n), *t)) return f.fail(std::to_string(n) + " points cannot fit");
            if (c.has_points) return f.fail("a second POINTS section");
            if (!m.pos.resize(3, n)) return __fail(f.r, io_no_memory, f.path, "not enough memory for the points");
            double* p = n ? m.pos.col(0) : nullptr;
            if (!f.numbers<double>(3 * n, *t, [p](std::size_t k, double v) { p[k] = v; })) return f.r.code;
            c.points = n;
            c.has_points = true;
        } else if (!polydata && same_word(w[0], "CELLS")) {
            if (read_cells(f, w, nw, c.cells, 0) < 0) return f.r.code;
        } else if (!polydata && same_word(w[0], "CELL_TYPES")) {
            std::size_t n;
            if (nw < 2 || !count_of(w[1], n) || n != c.cells.size())
                return f.fail("CELL_TYPES: " + std::to_string(c.cells.size()) + " types expected, after CELLS");
            c.cells.types.resize(n);
            bool fine = true;
            if (!f.numbers<std::int64_t>(n, f.binary ? number_types[5] : number_types[10],
                                         [&](std::size_t k, std::int64_t v) {
                                             fine = fine && v >= 0 && v < 256;
                                             c.cells.types[k] = static_cast<unsigned char>(v);
                                         }))
                return f.r.code;
            if (!fine) return f.fail("CELL_TYPES: a type out of 0 to 255");
        } else if (polydata && poly >= 0) {
            if (read_cells(f, w, nw, c.poly[poly], poly_types[poly]) < 0) return f.r.code;
        } else if (same_word(w[0], "POINT_DATA") || same_word(w[0], "CELL_DATA")) {
            if (nw < 2 || !count_of(w[1], tuples)) return f.fail(std::string(w[0]) + ": a count expected");
            data = w[0][0] == 'P' || w[0][0] == 'p' ? &c.point_data : &c.cell_data;
        } else if (same_word(w[0], "METADATA")) {
            skip_to_empty_line(f);
        } else if (read_attribute(f, w, nw, tuples, data) < 0) {
            return f.r.code;
        }
    }
}

struct block_maker {
    vtk_file& f;
    __element_runs runs;

    void add(element_type type, std::int64_t const* p, unsigned char const* order, std::size_t c)
    {
        runs.add(type, p, order, c);
    }
    void add(element_type type, std::int64_t const* p, std::size_t c) { add(type, p, __vtk_cells[type].nodes, c); }

    // Cell c of VTK type `code` with n points p, into elements of the library's types.
    int cell(unsigned char code, std::int64_t const* p, std::size_t n, std::size_t c, element_type const* types)
    {
        static unsigned char const pixel_order[4] = {0, 1, 3, 2}, voxel_order[8] = {0, 1, 3, 2, 4, 5, 7, 6};
        auto wrong = [&](char const* what) {
            return f.fail("cell " + std::to_string(c + 1) + ": " + what + " of " + std::to_string(n) + " points");
        };
        if (element_type type = types[code]) {
            if (n != nbr_nodes(type)) return wrong(__vtk_cells[type].name);
            add(type, p, c);
        } else if (code == poly_vertex) {
            for (std::size_t k = 0; k < n; ++k) add(ET_NODE, p + k, c);
        } else if (code == poly_line) {
            if (n < 2) return wrong("a poly-line");
            for (std::size_t k = 0; k + 1 < n; ++k) add(ET_EDGE2, p + k, c);
        } else if (code == polygon) {
            if (n < 3) return wrong("a polygon");
            if (n <= 4) return add(n == 3 ? ET_FACE_T3 : ET_FACE_Q4, p, c), 0;
            for (std::size_t k = 1; k + 1 < n; ++k) {
                std::int64_t fan[3] = {p[0], p[k], p[k + 1]};
                add(ET_FACE_T3, fan, c);
            }
            __pass_over(f.r, "polygons of more than 4 points, cut into fans of triangles", 1);
        } else if (code == triangle_strip) {
            if (n < 3) return wrong("a triangle strip");
            for (std::size_t k = 0; k + 2 < n; ++k) {
                std::int64_t t[3] = {p[k + (k & 1)], p[k + 1 - (k & 1)], p[k + 2]};
                add(ET_FACE_T3, t, c);
            }
            __pass_over(f.r, "triangle strips, cut into triangles", 1);
        } else if (code == pixel || code == voxel) {
            if (n != (code == pixel ? 4u : 8u)) return wrong(code == pixel ? "a pixel" : "a voxel");
            add(code == pixel ? ET_FACE_Q4 : ET_HEXA8, p, code == pixel ? pixel_order : voxel_order, c);
        } else {
            __pass_over(f.r, "cells of VTK type " + std::to_string(code), 1);
        }
        return 0;
    }
};

int make_blocks(vtk_file& f, vtk_content const& c, mesh& m, std::vector<__element_run>& runs)
{
    element_type types[256] = {};
    for (int t = 0; t < static_cast<int>(nbr_element_types); ++t)
        if (__vtk_cells[t].name) types[__vtk_cells[t].code] = static_cast<element_type>(t);
    block_maker maker{f, {}};
    std::size_t cell = 0;
    for (cell_list const* list : {&c.cells, &c.poly[0], &c.poly[1], &c.poly[2], &c.poly[3]}) {
        if (list->types.size() != list->size()) return f.fail("CELLS without CELL_TYPES");
        for (std::size_t k = 0; k < list->size(); ++k, ++cell) {
            std::int64_t const* p = list->points.data() + list->offsets[k];
            std::size_t n = static_cast<std::size_t>(list->offsets[k + 1] - list->offsets[k]);
            for (std::size_t q = 0; q < n; ++q)
                if (p[q] < 0 || static_cast<std::uint64_t>(p[q]) >= c.points)
                    return f.fail("cell " + std::to_string(cell + 1) + " refers to point " + std::to_string(p[q]) +
                                  ", but there are " + std::to_string(c.points) + " points");
            if (maker.cell(list->types[k], p, n, cell, types) < 0) return f.r.code;
        }
    }
    if (!maker.runs.to_blocks(m)) return __fail(f.r, io_no_memory, f.path, "not enough memory for the cells");
    runs = std::move(maker.runs.runs);
    return 0;
}

bool is_reference(data_array const& a)
{
    if (a.name != "reference" || a.components != 1 || !a.integer) return false;
    for (double v : a.values)
        if (v < 0 || v > 4294967295.0) return false;
    return true;
}

// Cell data follow the cells; element fields follow the blocks.
int add_fields(vtk_file& f, vtk_content const& c, std::vector<__element_run> const& runs, mesh& m)
{
    std::size_t cells = c.cells.size();
    for (cell_list const& l : c.poly) cells += l.size();
    for (data_array const& a : c.point_data) {
        if (a.values.size() != std::size_t(a.components) * c.points)
            return f.fail("POINT_DATA: " + std::to_string(a.values.size() / a.components) + " tuples for " +
                          std::to_string(c.points) + " points");
        mesh_field field{a.name, {}};
        if (!field.values.resize(a.components, c.points))
            return __fail(f.r, io_no_memory, f.path, "not enough memory for the point data");
        std::copy(a.values.begin(), a.values.end(), c.points ? field.values.col(0) : nullptr);
        m.node_fields.push_back(std::move(field));
    }
    for (data_array const& a : c.cell_data) {
        if (a.values.size() != std::size_t(a.components) * cells)
            return f.fail("CELL_DATA: " + std::to_string(a.values.size() / a.components) + " tuples for " +
                          std::to_string(cells) + " cells");
        if (is_reference(a)) {
            for (std::size_t k = 0; k < runs.size(); ++k) {
                dense1D<unsigned, 8>& refs = m.blocks[k].references;
                if (!refs.resize(runs[k].sources.size()))
                    return __fail(f.r, io_no_memory, f.path, "not enough memory for the references");
                for (std::size_t e = 0; e < refs.size(); ++e)
                    refs[e] = static_cast<unsigned>(a.values[runs[k].sources[e]]);
            }
            continue;
        }
        mesh_field field{a.name, {}};
        if (!field.values.resize(a.components, m.nbr_elements()))
            return __fail(f.r, io_no_memory, f.path, "not enough memory for the cell data");
        std::size_t e = 0;
        for (__element_run const& run : runs)
            for (std::size_t source : run.sources)
                std::copy_n(a.values.data() + source * a.components, a.components, field.values.col(e++));
        m.element_fields.push_back(std::move(field));
    }
    return 0;
}

int read_head(vtk_file& f, bool& polydata)
{
    std::string_view first = f.rest_of_line();
    if (first.rfind("# vtk DataFile Version", 0) != 0)
        return __fail(f.r, io_malformed, f.path, "not a legacy VTK file: no \"# vtk DataFile Version\" line first");
    f.rest_of_line();  // the title
    std::string_view w[2];
    if (f.header(w, 1) != 1 || !(same_word(w[0], "ASCII") || same_word(w[0], "BINARY")))
        return f.fail("ASCII or BINARY expected on the third line");
    bool binary = same_word(w[0], "BINARY");
    if (f.header(w, 2) != 2 || !same_word(w[0], "DATASET")) return f.fail("DATASET expected");
    polydata = same_word(w[1], "POLYDATA");
    if (!polydata && !same_word(w[1], "UNSTRUCTURED_GRID"))
        return __fail(f.r, io_unsupported, f.path,
                      "DATASET " + std::string(w[1]) + ": only UNSTRUCTURED_GRID and POLYDATA are read");
    f.binary = binary;
    return 0;
}

}  // namespace

int __read_VTK(std::string const& path, mesh& m, io_report& r)
{
    std::string text = __file_text(path);
    vtk_file f{path, r, text};
    vtk_content c;
    bool polydata = false;
    std::vector<__element_run> runs;
    if (read_head(f, polydata) < 0 || read_sections(f, c, polydata, m) < 0 || make_blocks(f, c, m, runs) < 0 ||
        add_fields(f, c, runs, m) < 0)
        return r.code;
    return 0;
}

}  // namespace tessarium
}  // namespace qv7
