// The containers that the library's code is written against. Nothing here grows: every array is
// allocated once at its final size, and nodes can come from a pool of fixed size. All operations
// tell failure by false. Only the setting of a bit is safe beside other settings from other
// threads.
#pragma once

#include "foundation/arrays.h"
#include "foundation/avl_tree.h"
#include "foundation/bit_matrix.h"
#include "foundation/bit_vector.h"
#include "foundation/node_pool.h"
#include "foundation/queue.h"
#include "foundation/stack.h"
