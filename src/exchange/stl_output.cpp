// STL writer, text and binary. Each facet carries the unit normal of its triangle.
#include "connectivity/elfes.h"
#include "exchange/text_sink.h"
#include "tessarium/element_type.h"
#include "tessarium/stl.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace qv7 {
namespace tessarium {
namespace {

struct facet {
    double normal[3];
    double vertex[3][3];
};

facet facet_of(dense2D<double> const& pos, unsigned const* nodes)
{
    facet f;
    vector_fixed<double, 3> director;
    elfes::faceT3::copy_director(pos, nodes, director);
    double n = std::sqrt(director[0] * director[0] + director[1] * director[1] + director[2] * director[2]);
    double scale = n != 0.0 ? 1.0 / n : 1.0;
    for (int k = 0; k < 3; ++k) f.normal[k] = director[k] * scale;
    for (int v = 0; v < 3; ++v)
        for (std::size_t k = 0; k < 3; ++k) f.vertex[v][k] = k < pos.rows() ? pos(k, nodes[v]) : 0.0;
    return f;
}

// "%e" numbers, as the writer has always printed them.
bool write_text(std::FILE* file, dense2D<double> const& pos, dense2D<unsigned> const& connectT3)
{
    __text_sink out(file);
    out.text("solid QV7\n");
    for (std::size_t j = 0; j < connectT3.cols(); ++j) {
        facet f = facet_of(pos, connectT3.col(j));
        out.text("   facet normal ");
        for (int k = 0; k < 3; ++k) out.scientific(f.normal[k], 6, false).put(k < 2 ? ' ' : '\n');
        out.text("      outer loop\n");
        for (auto const& v : f.vertex) {
            out.text("         vertex ");
            for (int k = 0; k < 3; ++k) out.scientific(v[k], 6, false).put(k < 2 ? ' ' : '\n');
        }
        out.text("      endloop\n   endfacet\n");
    }
    out.text("endsolid QV7\n");
    out.flush();
    return !out.failed();
}

void put_float(double x, unsigned char*& p)
{
    float f = static_cast<float>(x);
    std::memcpy(p, &f, sizeof f);
    p += sizeof f;
}

bool write_binary(std::FILE* file, dense2D<double> const& pos, dense2D<unsigned> const& connectT3)
{
    constexpr std::size_t record = 50, chunk = 512;
    unsigned char buffer[chunk * record];
    std::memset(buffer, 0, 84);
    std::memcpy(buffer, "QV7 STL Binary", 14);
    std::uint32_t count = static_cast<std::uint32_t>(connectT3.cols());
    std::memcpy(buffer + 80, &count, 4);
    if (std::fwrite(buffer, 1, 84, file) != 84) return false;
    std::size_t filled = 0;
    for (std::size_t j = 0; j < connectT3.cols(); ++j) {
        facet f = facet_of(pos, connectT3.col(j));
        unsigned char* p = buffer + filled * record;
        for (double x : f.normal) put_float(x, p);
        for (auto const& v : f.vertex)
            for (double x : v) put_float(x, p);
        p[0] = p[1] = 0;  // attribute word
        if (++filled == chunk) {
            if (std::fwrite(buffer, record, chunk, file) != chunk) return false;
            filled = 0;
        }
    }
    return std::fwrite(buffer, record, filled, file) == filled;
}

}  // namespace

int STL_output(char const* file_name, dense2D<double> const& pos, dense2D<unsigned> const& connectT3, bool text)
{
    std::FILE* file = std::fopen(file_name, text ? "wt" : "wb");
    if (!file) return -1;
    // Refusals after the open leave the file created, empty and open: that order is part of
    // this writer's contract.
    if (pos.rows() != 2 && pos.rows() != 3) return -2;
    if (!check_IDs(connectT3, ET_FACE_T3, static_cast<unsigned>(pos.cols()))) return -3;
    bool written = text ? write_text(file, pos, connectT3) : write_binary(file, pos, connectT3);
    bool closed = std::fclose(file) == 0;
    return written && closed ? 0 : -1;
}

}  // namespace tessarium
}  // namespace qv7
