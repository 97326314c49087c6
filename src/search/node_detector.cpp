#include "tessarium/node_detector.h"

#include "search/bisection_tree.h"
#include "search/node_count.h"
#include "tessarium/array_ops.h"
#include "tessarium/index_utilities.h"

#include <functional>
#include <iterator>

namespace qv7 {
namespace tessarium {

namespace {

using tree2_type = bisection_tree<dense2D<double>, 2>;
using tree3_type = bisection_tree<dense2D<double>, 3>;

bool rows_supported(dense2D<double> const& pos) noexcept
{
    return pos.rows() == 2 || pos.rows() == 3;
}

template <class Tree>
int insert_into(Tree* tree, dense1D<unsigned, 8> const& IDs)
{
    if (!tree) return 0;
    dense1D<unsigned, 8> order;
    std::size_t added = __insert_shuffled(*tree, IDs, order);
    // Reordering the records costs a pass over the whole tree: worth it after a large batch only.
    if (2 * added >= tree->size()) tree->__relayout();
    return static_cast<int>(added);
}

template <class Tree>
Tree* copy_tree(Tree const& source)
{
    Tree* tree = new Tree(source.coords);
    tree->nodes.items.copy(source.nodes.items);
    tree->nodes.free_slots.clear();
    vecvec::push_back(source.nodes.free_slots, tree->nodes.free_slots);
    tree->nodes.free_flags.copy(source.nodes.free_flags);
    return tree;
}

template <class Tree, class Point>
unsigned closest_to(Tree const* tree, Point const& point)
{
    return tree ? tree->find_closest(point) : NONE_ID;
}

template <class Tree>
unsigned closest_other(Tree const& tree, unsigned node)
{
    dense2D<double> const& pos = *tree.coords;
    typename Tree::point_type point;
    for (unsigned k = 0; k < Tree::point_type::size(); ++k) point[k] = pos(k, node);
    return tree.find_closest_if(point, binder2nd<std::not_equal_to<unsigned>>({}, node));
}

template <class Tree>
void in_box(Tree const* tree, double const* box, dense1D<unsigned, 8>& IDs)
{
    if (!tree || tree->empty()) return;
    tree->__search1(box, 0, 0, std::back_inserter(IDs));
}

}  // namespace

node_detector::node_detector(dense2D<double> const& pos)
{
    reinit(pos);
}

node_detector::node_detector(dense2D<double> const& pos, dense1D<unsigned, 8> const& IDs)
{
    reinit(pos, IDs);
}

node_detector::node_detector(dense2D<double> const& pos, dense2D<unsigned> const& connect)
{
    reinit(pos, connect);
}

node_detector::node_detector(dense2D<double> const& pos, dense2D<unsigned> const* connect_begin,
                             dense2D<unsigned> const* connect_end)
{
    reinit(pos, connect_begin, connect_end);
}

node_detector::node_detector(node_detector const& other)
{
    *this = other;
}

node_detector& node_detector::operator=(node_detector const& other)
{
    if (tree2 == other.tree2 && tree3 == other.tree3) return *this;
    clear();
    if (other.tree2) tree2 = copy_tree(*other.tree2);
    if (other.tree3) tree3 = copy_tree(*other.tree3);
    return *this;
}

node_detector::~node_detector()
{
    clear();
}

void node_detector::clear() noexcept
{
    delete tree2;
    delete tree3;
    tree2 = nullptr;
    tree3 = nullptr;
}

int node_detector::reinit(dense2D<double> const& pos)
{
    clear();
    if (!rows_supported(pos)) return -1;
    dense1D<unsigned, 8> all(pos.cols());
    for (std::size_t i = 0; i < all.size(); ++i) all[i] = static_cast<unsigned>(i);
    return reinit(pos, all);
}

int node_detector::reinit(dense2D<double> const& pos, dense1D<unsigned, 8> const& IDs)
{
    if (!rows_supported(pos)) return -1;
    if (!check_IDs(IDs, __node_count(pos))) return -2;
    clear();
    if (pos.rows() == 3) {
        tree3 = new tree3_type(&pos);
        tree3->__reserve(IDs.size());
    } else {
        tree2 = new tree2_type(&pos);
        tree2->__reserve(IDs.size());
    }
    insert(IDs);
    return 0;
}

int node_detector::reinit(dense2D<double> const& pos, dense2D<unsigned> const& connect)
{
    dense1D<unsigned, 8> nodes;
    unique_indices(nodes, connect);
    return reinit(pos, nodes);
}

int node_detector::reinit(dense2D<double> const& pos, dense2D<unsigned> const* connect_begin,
                          dense2D<unsigned> const* connect_end)
{
    dense1D<unsigned, 8> nodes;
    int status = unique_indices(nodes, connect_begin, connect_end);
    return status != 0 ? status : reinit(pos, nodes);
}

int node_detector::insert(dense1D<unsigned, 8> const& IDs)
{
    return tree3 ? insert_into(tree3, IDs) : insert_into(tree2, IDs);
}

int node_detector::insert(dense2D<unsigned> const& connect)
{
    dense1D<unsigned, 8> nodes;
    unique_indices(nodes, connect);
    return insert(nodes);
}

std::size_t node_detector::size() const noexcept
{
    return tree3 ? tree3->size() : tree2 ? tree2->size() : 0;
}

unsigned node_detector::find_closest(vector_fixed<double, 2> const& point) const
{
    if (tree3) return tree3->find_closest({point[0], point[1], 0.0});
    return closest_to(tree2, point);
}

unsigned node_detector::find_closest(vector_fixed<double, 3> const& point) const
{
    if (tree2) return tree2->find_closest({point[0], point[1]});
    return closest_to(tree3, point);
}

unsigned node_detector::find_closest(unsigned node) const
{
    if (tree3) return node < tree3->coords->cols() ? closest_other(*tree3, node) : NONE_ID;
    if (tree2) return node < tree2->coords->cols() ? closest_other(*tree2, node) : NONE_ID;
    return NONE_ID;
}

void node_detector::find_in_box(vector_fixed<double, 2> const& min, vector_fixed<double, 2> const& max,
                                dense1D<unsigned, 8>& IDs) const
{
    double const flat[4] = {min[0], min[1], max[0], max[1]};
    double const padded[6] = {min[0], min[1], 0.0, max[0], max[1], 0.0};
    in_box(tree2, flat, IDs);
    in_box(tree3, padded, IDs);
}

void node_detector::find_in_box(vector_fixed<double, 3> const& min, vector_fixed<double, 3> const& max,
                                dense1D<unsigned, 8>& IDs) const
{
    double const flat[4] = {min[0], min[1], max[0], max[1]};
    double const full[6] = {min[0], min[1], min[2], max[0], max[1], max[2]};
    in_box(tree2, flat, IDs);
    in_box(tree3, full, IDs);
}

}  // namespace tessarium
}  // namespace qv7
