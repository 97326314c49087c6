// Wavefront OBJ reader: one string stream per line, one per face token.
#include "exchange/wavefront_obj.h"

#include "tessarium/array_ops.h"
#include "tessarium/wavefront_obj.h"

#include <fstream>
#include <new>
#include <sstream>
#include <string>

namespace qv7 {
namespace tessarium {

int __WFRT_read_floats(std::istream& line, dense1D<double, 8>& values)
{
    values.clear();
    std::string rest;
    if (!std::getline(line, rest)) return -2;
    std::istringstream numbers(rest);
    double x;
    while (numbers >> x)
        if (!values.push_back(x)) return -199;
    return 0;
}

int __read_id(std::istream& token, dense1D<unsigned, 8>& ids)
{
    char c;
    if (!(token >> c) || c == '/') return 0;
    token.unget();
    int id;
    if (!(token >> id)) return 0;
    // A negative index of the format wraps here to a huge node number, on purpose.
    if (!ids.push_back(static_cast<unsigned>(id))) return -199;
    if (!(token >> c)) return 0;
    return c == '/' ? 0 : -2;
}

namespace {

struct obj_reader {
    std::ifstream& file;
    dense2D<double>& pos;
    dense2D<double>& normals;
    dense2D<double>& textures;
    dense2D<unsigned>& connectT3;
    dense2D<unsigned>& connectQ4;
    dense1D<double, 8> values;
    dense1D<unsigned, 8> vertex_ids, texture_ids, normal_ids;
    bool normals_seen = false;
    bool textures_seen = false;

    int line(std::string const& text)
    {
        std::istringstream stream(text);
        std::string word;
        if (!(stream >> word)) return 0;
        if (word == "v") return vertex(stream);
        if (word == "vn") return normal(stream);
        if (word == "vt") return texture(stream);
        if (word == "f") return face(stream);
        return 0;
    }

    // The first three values; a fourth (the weight) and vertex colours are dropped.
    int vertex(std::istream& stream)
    {
        if (int r = __WFRT_read_floats(stream, values)) return r;
        if (values.size() < 3) return -2;
        return matvec::__push_back(values.data(), 3, pos) ? 0 : -199;
    }

    int normal(std::istream& stream)
    {
        normals_seen = true;
        if (int r = __WFRT_read_floats(stream, values)) return r;
        if (values.size() != 3) return -2;
        return matvec::__push_back(values.data(), 3, normals) ? 0 : -199;
    }

    // As many rows as the first "vt" line holds; a later line of another length is malformed.
    int texture(std::istream& stream)
    {
        textures_seen = true;
        if (int r = __WFRT_read_floats(stream, values)) return r;
        if (values.size() >= 4) return -2;
        if (values.empty()) return 0;
        if (!textures.empty() && textures.rows() != values.size()) return -2;
        return matvec::__push_back(values.data(), values.size(), textures) ? 0 : -199;
    }

    int face(std::istream& stream)
    {
        vertex_ids.clear();
        texture_ids.clear();
        normal_ids.clear();
        std::string rest;
        if (!std::getline(stream, rest)) return -2;
        std::istringstream tokens(rest);
        std::string token;
        while (tokens >> token) {
            std::istringstream slots(token);
            int r = __read_id(slots, vertex_ids);
            if (r == 0) r = __read_id(slots, texture_ids);
            if (r == 0) r = __read_id(slots, normal_ids);
            if (r != 0) return r;
        }
        if (!normals_seen && !normal_ids.empty()) return -2;
        if (!textures_seen && !texture_ids.empty()) return -2;
        // A face on a last line without its line feed is dropped.
        if (!file.good()) return 0;
        for (unsigned& id : vertex_ids) id = id == 0 ? static_cast<unsigned>(pos.cols()) : id - 1;
        if (vertex_ids.size() == 3) return matvec::__push_back(vertex_ids.data(), 3, connectT3) ? 0 : -199;
        if (vertex_ids.size() == 4) return matvec::__push_back(vertex_ids.data(), 4, connectQ4) ? 0 : -199;
        return 0;
    }
};

}  // namespace

int WavefrontOBJ_input(char const* file_name, dense2D<double>& pos, dense2D<double>& normals, dense2D<double>& textures,
                       dense2D<unsigned>& connectT3, dense2D<unsigned>& connectQ4)
{
    std::ifstream file(file_name);
    pos.clear();
    normals.clear();
    textures.clear();
    connectT3.clear();
    connectQ4.clear();
    if (!file) return -1;
    obj_reader reader{file, pos, normals, textures, connectT3, connectQ4, {}, {}, {}, {}};
    std::string text;
    try {
        while (std::getline(file, text)) {
            if (int r = reader.line(text)) return r;
            if (!file.good()) break;
        }
    } catch (std::bad_alloc const&) {
        return -199;  // a line too large to copy
    }
    // A line too long for memory ends the reads with badbit set, like the end of the file.
    return file.bad() ? -199 : 0;
}

}  // namespace tessarium
}  // namespace qv7
