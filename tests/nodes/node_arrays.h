// The array builders now live with the other builders.
#pragma once

#include "support/arrays.h"

namespace node_arrays = test_arrays;
