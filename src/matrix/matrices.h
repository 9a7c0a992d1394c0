// Named matrices. In the store a matrix is up to three objects of one name: the body, and the names of its rows and of
// its columns, of the types `matrixkind`, +1 and +2. That is a family's type of matrices (stored/families.h gives it as
// a number), or obj_estimate for what an estimation keeps for itself, where the body stands alone and the object
// `colnames` of the same type names the rows and columns of every matrix that has as many.
//
//   body    | count i32: entries when sparse, else 0 | rows i16 | cols i16 | elements, whose size tells the layout |
//   layout  1 full: rows x cols doubles, row by row; 2 symmetric: the lower triangle by rows; 3 sparse: entries of
//           value f64, row u16, column u16 in row-major order, 12 bytes each
//   names   rows (or cols) records of 83 bytes: equation 32, name 32, operator 19; zeros behind, none when full
//
// Who computes works on a `matrix`: elements row by row without gaps, in memory of its own, with its names. Nothing
// here knows an expression or a command.
#pragma once
#include <string>
#include <string_view>
#include <vector>
#include "base/memalloc.h"

namespace velmo {

struct axisname {
    char eq[32], name[32], op[19];
    std::string_view eqtext() const, nametext() const, optext() const;
    std::string opname() const;          // op.name, or the name alone
    std::string full() const;            // eq:op.name, as far as there is each
};
static_assert(sizeof(axisname) == 83);
// From its parts (longer ones are cut; an equation `_` is none), or from "eq:op.name".
axisname makeaxisname(std::string_view eq, std::string_view op, std::string_view name);
axisname readaxisname(std::string_view text);

enum matlayout : UByte { mat_full = 1, mat_symmetric = 2, mat_sparse = 3 };

struct matrix {
    Int4 rows = 0, cols = 0;
    boolean symmetric = false;           // to be stored as a lower triangle; x is full all the same
    workspace x{0};
    std::vector<axisname> rownames, colnames;
    Double& at(Int4 i, Int4 j) { return x.get<Double>()[std::size_t(i) * std::size_t(cols) + std::size_t(j)]; }
    Double at(Int4 i, Int4 j) const { return x.get<Double>()[std::size_t(i) * std::size_t(cols) + std::size_t(j)]; }
    Double* row(Int4 i) const { return x.get<Double>() + std::size_t(i) * std::size_t(cols); }
};
// Room for r x c zeros, names r1... and c1...: 0; 908 above matsize, 909 without room, both printed.
Int4 makematrix(matrix& m, Int4 r, Int4 c);
void defaultnames(std::vector<axisname>& names, char letter, Int4 n);   // r1, r2, ...

// State
extern Int4 matrixkind;                  // the type of bodies that the calls below mean; obj_matrix outside a guard

// Whether there is one; its size.
boolean matfind(std::string_view name, Int4* rows = nullptr, Int4* cols = nullptr);
// A copy, with names (by `_1`... without an object of names). 0; 111 (printed: "matrix NAME not found"), 908, 909.
Int4 matcopy(std::string_view name, matrix& m);
// Stores it in place of one of that name, as the newest; `m.symmetric` or `layout` says how. All or nothing: 0 or 950
// (printed). The name is taken for granted: checkmatrixname looks at those that are typed. Takes the name from a user's
// scalar; in another family its poster calls stored_claim (stored/families.h).
Int4 matput(std::string_view name, const matrix& m, matlayout layout = mat_full);
// Sets one element (from 0) of a full or symmetric one in place. matel: missing outside.
matlayout matlayoutof(std::string_view name);
void matset(std::string_view name, Int4 i, Int4 j, Double value);
Double matel(std::string_view name, Int4 i, Int4 j);
boolean matdrop(std::string_view name);                        // all three; false when there is none
Int4 matputnames(std::string_view name, boolean columns, const std::vector<axisname>& names);    // 0 or 950
std::vector<std::string> matnames();                           // in the order of the store, newest first

// The rule for typed names: 0 or 198 (" invalid name").
Int4 checkmatrixname(std::string_view name);
// The tests of symmetry that `matrix list` and the kernels' callers make.
boolean issymmetric(const matrix& m);

}  // namespace velmo
