// Private to the compiler: its state while one expression is compiled, and the steps that the files share. Any
// failure prints its message and leaves by the private exit `failure`, which exp_compile catches; nothing here
// returns a code.
#pragma once
#include <string>
#include <string_view>
#include <vector>
#include "expr/compile.h"

namespace velmo {

struct failure { Int4 rc; };                  // the private exit
[[noreturn]] void fail(Int4 rc);              // prints the code's own message
[[noreturn]] void fail(Int4 rc, const char* message);
inline void failon(Int4 rc) {                 // a code whose message has been printed
    if (rc) throw failure{rc};
}

// The text of the expression without blanks. mate[i] is the place of the bracket or quote that belongs to the one at
// i, or -1: scans jump over what is enclosed, and nested parentheses cost no more than flat ones.
struct cuttext {
    std::string chars;
    std::vector<Int4> mate;
};
// Cuts the expression out of the command line and leaves the cursor behind it.
void cutexpression(cuttext& out, exp& e, const compileoptions& options);

struct span { Int4 b, e; };

struct compiler {
    exp* e;
    compileoptions options;
    boolean visible;                // names mean variables
    boolean matrices;               // a matrix mode: operators may make matrices
    boolean matjoin;                // commas join matrices: not within the arguments of a function
    Int4 depth;                     // spans being compiled
    UByte types[numstack];          // what the stacks will hold: exptype
    Int4 ntypes, nstrings, nmatrices;
    cuttext text;
    std::vector<span> arguments;    // of the calls being compiled, innermost last
};
extern compiler cc;

inline std::string_view spantext(span s) { return {cc.text.chars.data() + s.b, std::size_t(s.e - s.b)}; }

void compilespan(span s);
void compilecall(std::string_view name, span arguments);

// Emission. `pushes` is what the word leaves on the stack, or nothing.
inline constexpr UByte pushesnothing = 128;
void emit(Int2 word, UByte pushes = pushesnothing);
void emitoperand(Int4 operand);
void notetype(UByte pushes);        // an entry that stands on a stack already
void emitliteral(Double value);
void emittext(std::string_view text);
// Pops n entries, each of which must have that type: 109.
void expect(UByte type, Int4 n);
UByte toptype(Int4 below = 0);      // the type of an entry counted from the top

// A call's arguments stand in cc.arguments from `from`, and `text` is all that stands between the parentheses.
struct call {
    std::string_view name;
    span text;
    Int4 from, n;
};
inline span argument(const call& c, Int4 i) { return cc.arguments[std::size_t(c.from + i)]; }
Int4 splitarguments(span s);        // adds them to cc.arguments; how many

// Matrices (compilematrix.cpp). An operator on the two entries on top, one of which is a matrix; a transpose of the
// top.
void compilematrixoperator(char op);
void compiletranspose();
// A and B joined at a comma or `\` outside brackets, when matrices are; false without one.
boolean compilejoin(span s);
// A matrix's name, with or without subscripts; false when there is none of that name.
boolean compilematrixname(std::string_view name, span s);
void compilestoredmatrix(Int4 family, std::string_view name);
boolean compilematrixcall(const call& c);        // false when no function of matrices has that name

}  // namespace velmo
