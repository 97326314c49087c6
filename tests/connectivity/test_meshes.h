// The structured test meshes now live with the other builders.
#pragma once

#include "support/test_meshes.h"
