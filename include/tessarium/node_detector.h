// Closest-node and box searches over the columns of a coordinate matrix.
#pragma once

#include "export.h"
#include "dense1D.h"
#include "dense2D.h"
#include "fixed.h"

#include <cstddef>

TESSARIUM_EXPORT_BEGIN
namespace qv7 {

template <class Matrix, unsigned D>
class bisection_tree;

namespace tessarium {

// Holds a search tree over nodes of a 2- or 3-row coordinate matrix. The matrix is not copied:
// it must outlive the detector, and it is re-read at each use, so it may grow meanwhile.
// Queries of either dimension work on trees of either dimension: a 2D query on a 3D tree lies
// at z = 0, a 3D query on a 2D tree loses its z.
class node_detector {
public:
    node_detector() noexcept = default;
    explicit node_detector(dense2D<double> const& pos);
    node_detector(dense2D<double> const& pos, dense1D<unsigned, 8> const& IDs);
    node_detector(dense2D<double> const& pos, dense2D<unsigned> const& connect);
    node_detector(dense2D<double> const& pos, dense2D<unsigned> const* connect_begin,
                  dense2D<unsigned> const* connect_end);
    node_detector(node_detector const& other);
    node_detector& operator=(node_detector const& other);
    ~node_detector();

    void clear() noexcept;

    // All nodes of pos: 0, or -1 if pos has other than 2 or 3 rows.
    int reinit(dense2D<double> const& pos);
    // The listed nodes: 0, -1 for a bad row count, -2 for a number beyond pos.
    int reinit(dense2D<double> const& pos, dense1D<unsigned, 8> const& IDs);
    // The nodes of the connectivity: as the list form.
    int reinit(dense2D<double> const& pos, dense2D<unsigned> const& connect);
    // The nodes of a range of connectivities: as the list form, or -3 for a reversed range.
    int reinit(dense2D<double> const& pos, dense2D<unsigned> const* connect_begin,
               dense2D<unsigned> const* connect_end);

    // Adds nodes (a repeated number is added again); the number of nodes added.
    int insert(dense1D<unsigned, 8> const& IDs);
    int insert(dense2D<unsigned> const& connect);

    std::size_t size() const noexcept;

    // The closest node, NONE_ID if there is none.
    unsigned find_closest(vector_fixed<double, 2> const& point) const;
    unsigned find_closest(vector_fixed<double, 3> const& point) const;
    // The closest node other than `node` itself, to a node of the matrix.
    unsigned find_closest(unsigned node) const;

    // Appends to IDs the nodes in the box, both ends of each range included.
    void find_in_box(vector_fixed<double, 2> const& min, vector_fixed<double, 2> const& max,
                     dense1D<unsigned, 8>& IDs) const;
    void find_in_box(vector_fixed<double, 3> const& min, vector_fixed<double, 3> const& max,
                     dense1D<unsigned, 8>& IDs) const;

private:
    bisection_tree<dense2D<double>, 2>* tree2 = nullptr;
    bisection_tree<dense2D<double>, 3>* tree3 = nullptr;
};

}  // namespace tessarium
}  // namespace qv7
TESSARIUM_EXPORT_END
