// The whole public surface of tessarium.
#pragma once

#include "ref_counted.h"
#include "vector_num.h"
#include "dense_handle.h"
#include "dense1D.h"
#include "dense2D.h"
#include "dynamic_array.h"
#include "fixed.h"
#include "small_algebra.h"
#include "array_ops.h"
#include "element_type.h"
#include "histogram.h"
#include "lapack.h"
#include "index_utilities.h"
#include "wavefront_obj.h"
#include "stl.h"
