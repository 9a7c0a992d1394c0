// Ends a reading of opcodes.def: takes back the macros that the rows were expanded by. Included many times.
#undef HAND
#undef VALUE
#undef ARITH1
#undef ARITH2
#undef CALL1
#undef CALL2
#undef CALL3
#undef CALL4
#undef CALLOBS
#undef CALLN
#undef TEXT
