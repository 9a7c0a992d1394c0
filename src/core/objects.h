// The object store: named, typed runs of bytes at the top of the block, growing downward. An object is
//
//   | size u32 | type u32 | datalen u32 | name 36 bytes | data: datalen of capacity bytes | to a multiple of 16 |
//
// total ((capacity + 63) / 16) * 16. Several objects may share name and type: the newest is found first, and walks
// go from the newest. Look-up goes through a hash of (type, name) and walks by type through a chain of that type;
// deletions leave holes that are closed in one pass when room is asked for; a value that fits is rewritten in place
// and counts as the newest. NO OBJECT ADDRESS SURVIVES objnew, objdel, objrename or objput: keep names, not
// addresses. Sizes reported (dynamic size, free space) are those of the live objects.
#pragma once
#include <string_view>
#include "core/memory.h"

namespace velmo {

enum objtype : Int4 {
    obj_vallabel = 1, obj_global = 2, obj_varlist = 3, obj_lastcmd = 4, obj_estimate = 5, obj_varlabel = 6,
    obj_program = 7, obj_xpprogram = 8, obj_matrix = 9, obj_cmdbuffer = 12, obj_constraint = 13, obj_graph = 14,
    obj_scalar = 15, obj_estpreserve = 16, obj_popup = 17, obj_char = 18, obj_postfile = 19, obj_tempmatrix = 20,
    obj_rscalar = 21, obj_rmacro = 22, obj_rmatrix = 23, obj_escalar = 26, obj_emacro = 27, obj_ematrix = 28,
    obj_smacro = 31, obj_parked = 33, obj_byobs = 34, obj_sortindex = 35,
    obj_handle = 37,
    obj_held = 19000, obj_local = 20000, obj_retscalar = 21000, obj_retmacro = 22000, obj_retmatrix = 23000,
    obj_any = -1,
};

struct object {
    UInt4 size;
    Int4 type;
    UInt4 datalen;
    char name[36];
    UByte* data() { return reinterpret_cast<UByte*>(this + 1); }
    UInt4 capacity() const { return size - UInt4(sizeof(object)); }
};
static_assert(sizeof(object) == 48);

// Changes whenever an object may have moved, or a program has come or gone: who remembers a program's address compares.
extern std::uint64_t objmoves;

// A new object with datalen bytes of unset data in room for capacity (>= datalen). Null when there is no room:
// "insufficient memory for <kind> <name>\n" has then been printed and the caller's code is 950. Names of up to 35
// bytes are kept.
object* objnew(std::string_view name, Int4 type, std::size_t datalen, std::size_t capacity);
// The newest object of that name and type, or null; *len receives its datalen.
object* objfind(std::string_view name, Int4 type, UInt4* len = nullptr);
// The object of the same name and type that was made before o, or null.
object* objolder(object* o);
// Makes or replaces the object of that name and type with these bytes, as the newest one. 0 or 950 (printed).
Int4 objput(std::string_view name, Int4 type, const void* in, std::size_t n);
// The same for a text, with a zero behind it.
Int4 objputtext(std::string_view name, Int4 type, std::string_view text);
// The object made before `prev` (null: the newest) of a type (obj_any: of any); null at the end. Names and types
// are copied out where asked (nameout: 36 bytes).
object* objnext(object* prev, char* nameout, Int4 type, Int4* typeout = nullptr);
boolean objdel(std::string_view name, Int4 type);        // the newest of that name; false when there is none
void objdelthis(object* o);
void objread(object* o, std::size_t offset, void* out, std::size_t n);      // clipped to datalen
void objwrite(object* o, std::size_t offset, const void* in, std::size_t n);
Int4 objrename(object* o, std::string_view newname);     // keeps its place; 0
// Gives an object another name and type without copying it, as the newest one; all of a type another type, in order.
void objmove(object* o, std::string_view newname, Int4 newtype);
void objmovetype(Int4 from, Int4 to);
void objdeltype(Int4 type);
Int4 objcount(Int4 type);
void beginbatch();           // between these, deletions are closed up once
void endbatch();
// Closes the holes: dynstart moves up. Called when room is asked for, by rows too: objects move then.
void objcompact();
std::uint64_t objbytes();    // live bytes in the store
const char* objkind(Int4 type);      // the word of the message
// Empties the store (start-up, a new block); writes all objects to an open file and reads them back, keeping order.
void objects_start();
Int4 objects_save(Int4 fd);          // 0 or 691
Int4 objects_load(Int4 fd);          // 0, 691 or 950
Int4 objects_check();                // part of memory_check: 0 or 9999
// Marks the spare room of all objects (core/guard.h).
void guardobjects();

}  // namespace velmo
