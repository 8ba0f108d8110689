// Operations on closed lists of vertex indices, in place.
#pragma once

#include "foundation/arrays.h"

namespace undercut {

// 0, or a code; the list is then as it was. A list without array counts as empty.

// Removes the elements that are equal to the one before them, the list read as closed; of a list of
// nothing but equal elements the first stays. -1 for an empty list, -2 no memory for the marks, -3
// for the new array.
int32_t lst_DropDup(TArr<uint32_t>& lst);

// Removes the last element. Codes as lst_DropDup.
int32_t lst_DropLast(TArr<uint32_t>& lst);

// Splits the list at repeated vertices and keeps the longest loop, the first of equals. What comes
// out is ready for lst_DropLast: the rest of the list, once the loops are cut out of it, has its
// first vertex repeated at the end. A loop that was cut out ends with the vertex where it was cut,
// and has that only once: it loses it there. -2 no memory for the links, -3 for the repeats, -4 for
// the loop; -8 if there is no loop, which is so for an empty list.
int32_t lst_BigLoop(TArr<uint32_t>& lst);

}  // namespace undercut
