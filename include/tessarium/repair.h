// Mesh repair: merging close nodes, dropping degenerate elements and unused nodes, clipping.
#pragma once

#include "export.h"
#include "dense1D.h"
#include "dense2D.h"
#include "fixed.h"

TESSARIUM_EXPORT_BEGIN
namespace qv7 {
namespace tessarium {

// merge: finds nodes within tol of one another (inclusive) and maps each onto a survivor: of a
// group of close nodes, the one listed first stays. merged[i] is the survivor of node i, i itself
// for a node that stays; it has pos.cols() entries and is emptied first by every form. Nodes are
// never removed. The result is the number of merged nodes, or:
//   -1  pos has other than 2 or 3 rows
//   -2  an index list or connectivity holds a number beyond pos
//   -3  second list refused (two-list form), reversed range (range forms), negative tol
//       (coordinates forms)
//   -4  negative tol (list forms);  -5  negative tol (connectivity forms);  -6  mode above 2
//   -199 a working array could not be sized
// A NaN tol passes the checks and merges nothing.

// Coordinates forms: every node takes the coordinates of its survivor.
int merge(dense2D<double>& pos, dense1D<unsigned, 8>& merged, double tol);
int merge(dense2D<double>& pos, double tol);
// List forms: the nodes of IDs1 merge onto those of IDs2 (onto one another with one list).
int merge(dense2D<double> const& pos, dense1D<unsigned, 8> const& IDs, dense1D<unsigned, 8>& merged, double tol);
int merge(dense2D<double> const& pos, dense1D<unsigned, 8> const& IDs1, dense1D<unsigned, 8> const& IDs2,
          dense1D<unsigned, 8>& merged, double tol);
// Connectivity forms, renumbering the connectivities in place. Mode 0 merges the nodes as the
// list form does; mode 1 merges only nodes of one element, closest pairs first; mode 2 repeats
// mode 1 until nothing changes.
int merge(dense2D<double> const& pos, dense2D<unsigned>* connect_begin, dense2D<unsigned>* connect_end,
          dense1D<unsigned, 8>& merged, double tol, unsigned mode);
int merge(dense2D<double> const& pos, dense2D<unsigned>& connect, dense1D<unsigned, 8>& merged, double tol,
          unsigned mode);
int merge(dense2D<double> const& pos, dense2D<unsigned>& connect1, dense2D<unsigned>& connect2,
          dense1D<unsigned, 8>& merged, double tol, unsigned mode);
int merge(dense2D<double> const& pos, dense2D<unsigned>* connect_begin, dense2D<unsigned>* connect_end, double tol,
          unsigned mode);
int merge(dense2D<double> const& pos, dense2D<unsigned>& connect, double tol, unsigned mode);
int merge(dense2D<double> const& pos, dense2D<unsigned>& connect1, dense2D<unsigned>& connect2, double tol,
          unsigned mode);

// Drops the columns that hold a node twice, keeping the order of the others; the number of
// columns removed. Repeated NONE_ID entries make a column degenerate only when strict. The form
// with IDs gives the new column of each old one (NONE_ID if removed). -199 if memory runs out.
int remove_degenerated(dense2D<unsigned>& connect, bool strict);
int remove_degenerated(dense2D<unsigned>& connect, dense1D<unsigned, 8>& IDs, bool strict);

// Drops the nodes that no connectivity uses, moving the others down in order and renumbering the
// connectivities; the first nbr_kept nodes always stay in place. IDs gives the new number of each
// old node (NONE_ID if removed); it stays empty when nothing can be removed because nbr_kept covers
// all nodes. The number of nodes removed, or -2 (a number beyond pos), -3 (reversed range), -199.
int simplify(dense2D<double>& pos, dense2D<unsigned>* connect_begin, dense2D<unsigned>* connect_end,
             dense1D<unsigned, 8>& IDs, unsigned nbr_kept);
int simplify(dense2D<double>& pos, dense2D<unsigned>& connect, dense1D<unsigned, 8>& IDs, unsigned nbr_kept);
int simplify(dense2D<double>& pos, dense2D<unsigned>& connect, unsigned nbr_kept);
int simplify(dense2D<double>& pos, dense2D<unsigned>& connect1, dense2D<unsigned>& connect2, unsigned nbr_kept);

// Appends to out the columns of connect whose nodes all lie strictly on the side of the plane
// through P that the normal N points to; a column ends at its first NONE_ID. A 2-row pos lies
// at z = 0. 0, or -2 (a number beyond pos), -4 (|N| < 1e-12), -5 (out of other rows), -199.
int clip(dense2D<double> const& pos, dense2D<unsigned> const& connect, vector_fixed<double, 3> const& P,
         vector_fixed<double, 3> const& N, dense2D<unsigned>& out);

}  // namespace tessarium
}  // namespace qv7
TESSARIUM_EXPORT_END
