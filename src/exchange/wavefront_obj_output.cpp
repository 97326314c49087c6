// Wavefront OBJ writer: nodes, texture coordinates, normals, then faces, through the buffered text writer.
#include "exchange/text_sink.h"
#include "tessarium/array_ops.h"
#include "tessarium/wavefront_obj.h"

#include <cstdio>

namespace qv7 {
namespace tessarium {
namespace {

// " <key> " then each value in "%.8e" followed by a blank; a 2-row pos gets 0.0 as its third value.
void write_values(__text_sink& out, char const* key, dense2D<double> const& M, std::size_t j, std::size_t count)
{
    out.text(key);
    for (std::size_t i = 0; i < count; ++i) out.scientific(i < M.rows() ? M(i, j) : 0.0, 8, false).put(' ');
    out.put('\n');
}

// Node, texture and normal of a vertex share one ID; both slashes are always written.
void write_faces(__text_sink& out, dense2D<unsigned> const& connect, bool textures, bool normals)
{
    for (std::size_t j = 0; j < connect.cols(); ++j) {
        out.text(" f ");
        for (std::size_t i = 0; i < connect.rows(); ++i) {
            unsigned long id = connect(i, j) + 1ul;
            out.integer(id).put('/');
            if (textures) out.integer(id);
            out.put('/');
            if (normals) out.integer(id);
            out.put(' ');
        }
        out.put('\n');
    }
}

// Shares connect into the array of its face type; other types go nowhere.
void route_by_type(dense2D<unsigned> const& connect, element_type FE, dense2D<unsigned>& T3, dense2D<unsigned>& Q4)
{
    if (FE == ET_FACE_T3) T3 = connect;
    if (FE == ET_FACE_Q4) Q4 = connect;
}

int check_inputs(dense2D<double> const& pos, dense2D<double> const& normals, dense2D<double> const& textures,
                 dense2D<unsigned> const& connectT3, dense2D<unsigned> const& connectQ4)
{
    if (pos.rows() != 2 && pos.rows() != 3) return -2;
    std::size_t n = pos.cols();
    if (!normals.empty() && (normals.rows() != 3 || normals.cols() != n)) return -3;
    if (!textures.empty() && (textures.rows() != 2 || textures.cols() != n)) return -4;
    if (!check_IDs(connectT3, ET_FACE_T3, NONE_ID)) return -5;
    if (!check_IDs(connectQ4, ET_FACE_Q4, NONE_ID)) return -6;
    return 0;
}

}  // namespace

int WavefrontOBJ_output(char const* file_name, dense2D<double> const& pos, dense2D<double> const& normals,
                        dense2D<double> const& textures, dense2D<unsigned> const& connectT3,
                        dense2D<unsigned> const& connectQ4)
{
    std::FILE* file = std::fopen(file_name, "w");
    if (!file) return -1;
    // A refusal leaves the file made, empty and closed; write errors go unreported.
    int refused = check_inputs(pos, normals, textures, connectT3, connectQ4);
    if (refused) return std::fclose(file), refused;
    std::size_t n = pos.cols();
    __text_sink out(file);
    for (std::size_t j = 0; j < n; ++j) write_values(out, " v ", pos, j, 3);
    if (!textures.empty())
        for (std::size_t j = 0; j < n; ++j) write_values(out, " vt ", textures, j, 2);
    if (!normals.empty())
        for (std::size_t j = 0; j < n; ++j) write_values(out, " vn ", normals, j, 3);
    write_faces(out, connectT3, !textures.empty(), !normals.empty());
    write_faces(out, connectQ4, !textures.empty(), !normals.empty());
    out.flush();
    std::fclose(file);
    return 0;
}

int WavefrontOBJ_output(char const* file_name, dense2D<double> const& pos, dense2D<unsigned> const& connectM,
                        element_type FE)
{
    dense2D<double> none;
    dense2D<unsigned> T3, Q4;
    route_by_type(connectM, FE, T3, Q4);
    return WavefrontOBJ_output(file_name, pos, none, none, T3, Q4);
}

int WavefrontOBJ_output(char const* file_name, dense2D<double> const& pos, dense2D<unsigned> const& connectM1,
                        dense2D<unsigned> const& connectM2, element_type FE1, element_type FE2)
{
    dense2D<double> none;
    dense2D<unsigned> T3, Q4;
    if (FE1 == FE2 && (FE1 == ET_FACE_T3 || FE1 == ET_FACE_Q4)) {
        dense2D<unsigned>& both = FE1 == ET_FACE_T3 ? T3 : Q4;
        if (!matmat::push_back(connectM1, both) || !matmat::push_back(connectM2, both)) return -199;
    } else {
        route_by_type(connectM1, FE1, T3, Q4);
        route_by_type(connectM2, FE2, T3, Q4);
    }
    return WavefrontOBJ_output(file_name, pos, none, none, T3, Q4);
}

}  // namespace tessarium
}  // namespace qv7
