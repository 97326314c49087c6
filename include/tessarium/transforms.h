// Moving, copying and bounding node sets: one column per node, 2D forms on rows 0-1, 3D forms on
// rows 0-2.
//
// A transform grows a node set with fewer rows than its dimension by zero rows first, and leaves
// further rows alone. Each comes for all nodes, for a list of node indices, or for the nodes of a
// connectivity (each node once). Nothing happens, and 0 is returned, for an empty node set, a zero
// translation or rotation, a unit zoom factor or an empty list; the index-list forms of rotate grow
// the node set before they look at the list.
#pragma once

#include "export.h"
#include "dense2D.h"
#include "fixed.h"

TESSARIUM_EXPORT_BEGIN
namespace qv7 {
namespace tessarium {

// p += T. Returns the number of nodes moved; the list forms skip indices beyond the node set and
// count an index each time it occurs.
int translate(dense2D<double>& pos, vector_fixed<double, 2> const& T);
int translate(dense2D<double>& pos, vector_fixed<double, 2> const& T, dense1D<unsigned, 8> const& IDs);
int translate(dense2D<double>& pos, vector_fixed<double, 2> const& T, dense2D<unsigned> const& connect);
int translate(dense2D<double>& pos, vector_fixed<double, 3> const& T);
int translate(dense2D<double>& pos, vector_fixed<double, 3> const& T, dense1D<unsigned, 8> const& IDs);
int translate(dense2D<double>& pos, vector_fixed<double, 3> const& T, dense2D<unsigned> const& connect);

// 2D: turns by angle (radians) about C, from x towards y. 3D: turns about C by the rotation vector
// R (axis times angle). Counts as translate.
int rotate(dense2D<double>& pos, vector_fixed<double, 2> const& C, double angle);
int rotate(dense2D<double>& pos, vector_fixed<double, 2> const& C, double angle, dense1D<unsigned, 8> const& IDs);
int rotate(dense2D<double>& pos, vector_fixed<double, 2> const& C, double angle, dense2D<unsigned> const& connect);
int rotate(dense2D<double>& pos, vector_fixed<double, 3> const& C, vector_fixed<double, 3> const& R);
int rotate(dense2D<double>& pos, vector_fixed<double, 3> const& C, vector_fixed<double, 3> const& R,
           dense1D<unsigned, 8> const& IDs);
int rotate(dense2D<double>& pos, vector_fixed<double, 3> const& C, vector_fixed<double, 3> const& R,
           dense2D<unsigned> const& connect);

// p = (p - C) * (factor - 1) + p. The all-node forms return the number of nodes; the list and
// connectivity forms return 0 whatever they moved.
int zoom(dense2D<double>& pos, vector_fixed<double, 2> const& C, double factor);
int zoom(dense2D<double>& pos, vector_fixed<double, 2> const& C, double factor, dense1D<unsigned, 8> const& IDs);
int zoom(dense2D<double>& pos, vector_fixed<double, 2> const& C, double factor, dense2D<unsigned> const& connect);
int zoom(dense2D<double>& pos, vector_fixed<double, 3> const& C, double factor);
int zoom(dense2D<double>& pos, vector_fixed<double, 3> const& C, double factor, dense1D<unsigned, 8> const& IDs);
int zoom(dense2D<double>& pos, vector_fixed<double, 3> const& C, double factor, dense2D<unsigned> const& connect);

// Appends to pos a copy of every node that connect uses, in first-seen order, and sets connectM to
// connect renumbered onto the copies. connectM may be connect itself. 0, or -199 when memory runs
// out (nodes already appended stay).
int copy_mesh(dense2D<double>& pos, dense2D<unsigned>& connectM, dense2D<unsigned> const& connect);
// A pattern of nbr_copies copies: copy k (from 1) is turned about C by k * angle (or k * R), then
// moved by k * T, and its elements are appended to connectM. 0, or the first failure of a copy.
int copy_mesh(dense2D<double>& pos, dense2D<unsigned>& connectM, vector_fixed<double, 2> const& T,
              vector_fixed<double, 2> const& C, double angle, unsigned nbr_copies, dense2D<unsigned> const& connect);
int copy_mesh(dense2D<double>& pos, dense2D<unsigned>& connectM, vector_fixed<double, 3> const& T,
              vector_fixed<double, 3> const& C, vector_fixed<double, 3> const& R, unsigned nbr_copies,
              dense2D<unsigned> const& connect);

// As copy_mesh, with the copies mirrored in the line or plane through P with normal N (any
// non-zero length). The node order of the elements is kept, so their orientation is reversed.
// 0, -4 for a zero N (nothing changed), or -199.
int copy_sym_mesh(dense2D<double>& pos, dense2D<unsigned>& connectM, vector_fixed<double, 2> const& P,
                  vector_fixed<double, 2> const& N, dense2D<unsigned> const& connect);
int copy_sym_mesh(dense2D<double>& pos, dense2D<unsigned>& connectM, vector_fixed<double, 3> const& P,
                  vector_fixed<double, 3> const& N, dense2D<unsigned> const& connect);

// Enlarges [min, max] to hold the nodes (no reset: initialise the box before the first call).
// pos must have exactly the box's dimension of rows: -1 otherwise; -2 for an index beyond pos.
int inc_bounding_box(dense2D<double> const& pos, vector_fixed<double, 2>& min, vector_fixed<double, 2>& max);
int inc_bounding_box(dense2D<double> const& pos, dense1D<unsigned, 8> const& IDs, vector_fixed<double, 2>& min,
                     vector_fixed<double, 2>& max);
int inc_bounding_box(dense2D<double> const& pos, dense2D<unsigned> const& connect, vector_fixed<double, 2>& min,
                     vector_fixed<double, 2>& max);
int inc_bounding_box(dense2D<double> const& pos, vector_fixed<double, 3>& min, vector_fixed<double, 3>& max);
int inc_bounding_box(dense2D<double> const& pos, dense1D<unsigned, 8> const& IDs, vector_fixed<double, 3>& min,
                     vector_fixed<double, 3>& max);
int inc_bounding_box(dense2D<double> const& pos, dense2D<unsigned> const& connect, vector_fixed<double, 3>& min,
                     vector_fixed<double, 3>& max);

}  // namespace tessarium
}  // namespace qv7
TESSARIUM_EXPORT_END
